// Pictures at the pace of the screen: one request at a time, the newest next, coarse first where a whole one takes long.

import { CancelledError, type Engine, type Part, type Picture, type Request } from "./engine";

/** What a frame of the screen leaves for shading, in milliseconds. */
const kFrame = 14;
/** A picture that takes longer is given up for a newer one, once its coarse one was seen. */
const kPatience = 60;

export interface Shown {
    part(part: Part): void;
    done(picture: Picture, milliseconds: number): void;
    failed(error: unknown): void;
}

let slots = 0;

export class Shading {
    readonly #engine: Engine;
    readonly #shown: Shown;
    readonly #slot = `shading ${++slots}`;
    #next: (() => Request) | undefined;
    #waits = false;
    #running: { began: number; seen: boolean; cancel(): void } | undefined;
    /** Of the last whole picture, in milliseconds a megapixel. */
    #pace = 60;

    constructor(engine: Engine, shown: Shown) {
        this.#engine = engine;
        this.#shown = shown;
    }

    get busy(): boolean {
        return this.#running !== undefined || this.#next !== undefined;
    }

    /** Asks for a picture in the next frame of the screen; only the last call before it counts. */
    ask(request: () => Request): void {
        this.#next = request;
        if (this.#waits) return;
        this.#waits = true;
        requestAnimationFrame(() => {
            this.#waits = false;
            this.#start();
        });
    }

    stop(): void {
        this.#next = undefined;
        this.#running?.cancel();
    }

    #start(): void {
        if (this.#next === undefined) return;
        if (this.#running !== undefined) {
            const { began, seen, cancel } = this.#running;
            if (!seen || performance.now() - began < kPatience) return; // its end starts the next one
            cancel();
        }
        const request = this.#next();
        this.#next = undefined;
        const pixels = (request.width * request.height) / 1e6;
        const expected = this.#pace * pixels * (request.samples ?? 1);
        const coarse = expected <= 2 * kFrame ? 0 : Math.min(4, Math.ceil(Math.log2(expected / kFrame) / 2));
        const began = performance.now();
        const running = { began, seen: false, cancel: () => job.cancel() };
        const job = this.#engine.bake<"rgba8">(
            { ...request, format: "rgba8", coarse, slot: this.#slot },
            (part) => {
                if (this.#running !== running) return;
                running.seen = true;
                this.#shown.part(part);
                if (this.#next !== undefined) this.#start();
            },
        );
        this.#running = running;
        job.done.then(
            (picture) => {
                const took = performance.now() - began;
                this.#pace = (this.#pace + took / pixels / (request.samples ?? 1)) / 2;
                if (this.#running === running) {
                    this.#running = undefined;
                    this.#shown.done(picture, took);
                }
                this.#start();
            },
            (error: unknown) => {
                if (this.#running === running) this.#running = undefined;
                if (!(error instanceof CancelledError)) this.#shown.failed(error);
                this.#start();
            },
        );
    }
}
