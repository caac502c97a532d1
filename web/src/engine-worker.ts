// One worker of the engine: an instance, which does what the page's thread posts, in order.

import { EngineCore, Refusal, type Json } from "./engine-core";
import type { GivenPicture, Mesh, Problem } from "./engine";

export type ToWorker =
    | { readonly kind: "start"; readonly module: WebAssembly.Module }
    | { readonly kind: "picture"; readonly id: number; readonly name: string; readonly picture: GivenPicture }
    | { readonly kind: "mesh"; readonly id: number; readonly name: string; readonly mesh: Mesh }
    | { readonly kind: "forget"; readonly name: string }
    | {
          readonly kind: "call";
          readonly id: number;
          readonly request: Json;
          readonly numbers?: { readonly [name: string]: ArrayBufferView };
      };

export type FromWorker =
    | { readonly id: number; readonly value: Json; readonly numbers?: ArrayBuffer }
    /** `isBroken`: this worker can't be used any more. */
    | { readonly id: number; readonly problem: Problem; readonly isBroken: boolean };

declare const self: {
    onmessage: ((event: MessageEvent<ToWorker>) => void) | null;
    postMessage(message: FromWorker, transfer: Transferable[]): void;
};

let core: Promise<EngineCore> | undefined;

async function answer(message: ToWorker): Promise<FromWorker | undefined> {
    if (message.kind === "start") {
        core = EngineCore.load(message.module);
        return undefined;
    }
    const engine = await core!;
    switch (message.kind) {
        case "picture":
            engine.givePicture(message.name, message.picture);
            return { id: message.id, value: {} };
        case "mesh":
            engine.giveMesh(message.name, message.mesh);
            return { id: message.id, value: {} };
        case "forget":
            engine.call({ call: "forget", name: message.name });
            return undefined;
        case "call":
            return { id: message.id, ...engine.call(message.request, message.numbers) };
    }
}

/** Messages are taken one after the other, also while the instance starts. */
let last: Promise<void> = Promise.resolve();
self.onmessage = ({ data }) => {
    last = last.then(async () => {
        const id = "id" in data ? data.id : -1;
        try {
            const reply = await answer(data);
            if (reply !== undefined)
                self.postMessage(reply, "numbers" in reply && reply.numbers ? [reply.numbers] : []);
        } catch (error) {
            if (error instanceof Refusal) {
                self.postMessage({ id, problem: error.problem, isBroken: false }, []);
                return;
            }
            const message = `the engine stopped: ${error instanceof Error ? error.message : String(error)}`;
            self.postMessage({ id, problem: { pointer: "", message }, isBroken: true }, []);
        }
    });
};
