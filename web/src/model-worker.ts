// The worker that reads a model: one file and what came with it, answered once.

import type { Mesh } from "./engine";
import { openModel, wholeMesh } from "./model-files";

export interface ToModelWorker {
    file: File;
    beside: readonly File[];
}
export type FromModelWorker = { problem: string } | { mesh: Mesh; needed: string[]; missing: string[] };

declare const self: {
    onmessage: ((event: MessageEvent<ToModelWorker>) => void) | null;
    postMessage(message: FromModelWorker, transfer: Transferable[]): void;
};

async function read({ file, beside }: ToModelWorker): Promise<void> {
    const named = { files: new Set<string>(), missing: new Set<string>() };
    try {
        const mesh = wholeMesh(await openModel(file.name, await file.arrayBuffer(), beside, named));
        const arrays = [mesh.positions, mesh.normals, mesh.uvs, mesh.indices];
        self.postMessage(
            { mesh, needed: [...named.files], missing: [...named.missing] },
            arrays.map(({ buffer }) => buffer as ArrayBuffer),
        );
    } catch (error) {
        self.postMessage({ problem: error instanceof Error ? error.message : String(error) }, []);
    }
}

self.onmessage = ({ data }) => void read(data);
