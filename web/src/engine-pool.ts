// The workers of the engine, and what waits for one of them.

import { EngineError, placed, type Problem } from "./engine-errors";
import type { Reply, Json } from "./engine-core";
import type { FromWorker, ToWorker } from "./engine-worker";

/** Of a worker: while one is answered the next is there already. */
const kTasksAtATime = 2;

/** A call for any worker. */
export interface Task {
    readonly priority: number;
    readonly request: Json;
    readonly numbers?: { readonly [name: string]: ArrayBufferView };
    /** Asked before it is posted. */
    isWanted(): boolean;
    done(reply: Reply): void;
    failed(error: EngineError): void;
}

interface Waiting {
    readonly isTask: boolean; // out of the queue
    done(reply: Reply): void;
    failed(problem: Problem): void;
}

interface Lane {
    worker: Worker;
    waiting: Map<number, Waiting>;
    hasAnswered: boolean; // since it was started
    isDead: boolean; // it can't be started
}

/** What every worker has to know, by name. */
type Given = Distributed<Extract<ToWorker, { kind: "picture" | "mesh" }>>;
type Distributed<Message> = Message extends unknown ? Omit<Message, "id"> & { readonly name: string } : never;

export class Pool {
    readonly #module: WebAssembly.Module;
    readonly #script: string | URL;
    readonly #lanes: Lane[] = [];
    readonly #queue: Task[] = [];
    readonly #given = new Map<string, Given>();
    #nextId = 0;
    #isDisposed = false;

    constructor(module: WebAssembly.Module, script: string | URL, count: number) {
        this.#module = module;
        this.#script = script;
        for (let i = 0; i < count; ++i) this.#lanes.push(this.#open());
    }

    get size(): number {
        return this.#lanes.length;
    }

    /** Runs a task as soon as a worker is free, before those of lower priority. */
    add(task: Task): void {
        if (this.#lanes.every((lane) => lane.isDead))
            return task.failed(
                new EngineError({ pointer: "", message: "the engine stopped: its script can't be run" }),
            );
        const behind = this.#queue.findIndex((other) => other.priority < task.priority);
        this.#queue.splice(behind < 0 ? this.#queue.length : behind, 0, task);
        this.#pump();
    }

    run(
        request: Json,
        priority: number,
        numbers: { readonly [name: string]: ArrayBufferView } = {},
    ): Promise<Reply> {
        return new Promise((done, failed) => {
            this.add({ priority, request, numbers, isWanted: () => true, done, failed });
        });
    }

    /** Tells all workers, now and when one is started anew. Rejects when they refuse it. */
    async give(given: Given): Promise<void> {
        const replies = this.#lanes.map((lane) => this.#tell(lane, given));
        this.#given.set(given.name, given);
        try {
            await Promise.all(replies);
        } catch (error) {
            if (this.#given.get(given.name) === given) this.#given.delete(given.name);
            throw error;
        }
    }

    forget(name: string): void {
        this.#given.delete(name);
        for (const lane of this.#lanes) post(lane.worker, { kind: "forget", name });
    }

    dispose(): void {
        this.#isDisposed = true;
        this.#queue.length = 0;
        for (const lane of this.#lanes) lane.worker.terminate();
    }

    #open(): Lane {
        const lane: Lane = { worker: this.#start(), waiting: new Map(), hasAnswered: false, isDead: false };
        this.#listen(lane);
        return lane;
    }

    #start(): Worker {
        const worker = new Worker(this.#script, { type: "module" });
        post(worker, { kind: "start", module: this.#module });
        return worker;
    }

    #listen(lane: Lane): void {
        lane.worker.onmessage = ({ data }: MessageEvent<FromWorker>) => {
            const waiting = lane.waiting.get(data.id);
            lane.waiting.delete(data.id);
            lane.hasAnswered = true;
            if ("problem" in data) {
                if (data.isBroken) this.#restart(lane, data.problem);
                waiting?.failed(data.problem);
            } else {
                waiting?.done(data);
            }
            this.#pump();
        };
        lane.worker.onerror = (event) =>
            this.#restart(lane, {
                pointer: "",
                message: `the engine stopped: ${event.message || "its script can't be run"}`,
            });
    }

    /** Starts a worker anew that can't go on, unless it never could. What it was doing fails. */
    #restart(lane: Lane, problem: Problem): void {
        lane.worker.terminate();
        const failed = lane.waiting;
        lane.waiting = new Map();
        lane.isDead = !lane.hasAnswered;
        lane.hasAnswered = false;
        if (!lane.isDead && !this.#isDisposed) {
            lane.worker = this.#start();
            this.#listen(lane);
            for (const given of this.#given.values()) void this.#tell(lane, given).catch(() => {});
        }
        for (const waiting of failed.values()) waiting.failed(problem);
        if (this.#lanes.every((other) => other.isDead))
            for (const task of this.#queue.splice(0)) task.failed(new EngineError(problem));
        this.#pump();
    }

    #tell(lane: Lane, given: Given): Promise<void> {
        return new Promise((done, failed) => {
            const id = this.#nextId++;
            lane.waiting.set(id, {
                isTask: false,
                done: () => done(),
                failed: (problem) => failed(new EngineError(placed(problem))),
            });
            post(lane.worker, { ...given, id });
        });
    }

    #pump(): void {
        const tasksOf = (lane: Lane) => [...lane.waiting.values()].filter((waiting) => waiting.isTask).length;
        while (this.#queue.length > 0 && !this.#isDisposed) {
            const lanes = this.#lanes.filter((lane) => !lane.isDead).sort((a, b) => tasksOf(a) - tasksOf(b));
            const freest = lanes[0];
            if (freest === undefined || tasksOf(freest) >= kTasksAtATime) return;
            const task = this.#queue.shift()!;
            if (task.isWanted()) this.#post(freest, task);
        }
    }

    #post(lane: Lane, task: Task): void {
        const id = this.#nextId++;
        lane.waiting.set(id, {
            isTask: true,
            done: (reply) => task.done(reply),
            failed: (problem) => task.failed(new EngineError(placed(problem))),
        });
        post(lane.worker, {
            kind: "call",
            id,
            request: task.request,
            ...(task.numbers && { numbers: task.numbers }),
        });
    }
}

function post(worker: Worker, message: ToWorker): void {
    worker.postMessage(message);
}
