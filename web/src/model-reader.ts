// Models of the reader's own, read in a worker: a large one takes seconds, and the page goes on meanwhile.

import { kApp } from "./catalog";
import type { Mesh } from "./engine";
import type { FromModelWorker, ToModelWorker } from "./model-worker";

export interface ReadModel {
    mesh: Mesh;
    /** Of the files beside it, those that it needs. */
    needed: Set<string>;
    /** Pictures that it names and that aren't there; it does without. */
    missing: string[];
}

/** Rejects with a sentence for the reader. */
export async function readModel(file: File, beside: readonly File[]): Promise<ReadModel> {
    const worker = new Worker(new URL("model-worker.js", kApp), { type: "module" });
    try {
        const reply = await new Promise<FromModelWorker>((done, failed) => {
            worker.onmessage = ({ data }: MessageEvent<FromModelWorker>) => done(data);
            worker.onerror = () => failed(new Error(`${file.name} couldn't be read: it may be too large.`));
            worker.postMessage({ file, beside } satisfies ToModelWorker);
        });
        if ("problem" in reply) throw new Error(reply.problem);
        return { mesh: reply.mesh, needed: new Set(reply.needed), missing: reply.missing };
    } finally {
        worker.terminate();
    }
}
