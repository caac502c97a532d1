// The engine under node: workers of the browser's kind over node's own, and the built scripts.

import { readFile } from "node:fs/promises";
import { fileURLToPath, pathToFileURL } from "node:url";
import { Worker as Thread } from "node:worker_threads";
import { build } from "esbuild";

export const kRoot = fileURLToPath(new URL("../..", import.meta.url));
const kBuilt = process.env.FERNWICK_WEB ?? `${kRoot}build/web`; // where scripts/web leaves engine.wasm
const kScripts = `${kBuilt}/tests`;

/** What a thread of node needs to run a script that is written for a worker of the browser. */
const kPrelude = `
    import { parentPort, workerData } from "node:worker_threads";
    globalThis.self = globalThis;
    globalThis.postMessage = (message, transfer) => parentPort.postMessage(message, transfer);
    await import(workerData);
    parentPort.on("message", (data) => globalThis.onmessage({ data }));`;

globalThis.Worker = class {
    constructor(script) {
        const prelude = new URL(`data:text/javascript,${encodeURIComponent(kPrelude)}`);
        this.thread = new Thread(prelude, { workerData: String(script) });
        this.thread.on("message", (data) => this.onmessage?.({ data }));
        this.thread.on("error", (error) => this.onerror?.({ message: error.message }));
    }
    postMessage(message, transfer) {
        this.thread.postMessage(message, transfer);
    }
    terminate() {
        void this.thread.terminate();
    }
};

await build({
    absWorkingDir: `${kRoot}web`,
    entryPoints: ["src/engine.ts", "src/engine-core.ts", "src/engine-worker.ts"],
    outdir: kScripts,
    outExtension: { ".js": ".mjs" }, // node 18 takes others for scripts of an older kind
    bundle: true,
    format: "esm",
    target: "es2022",
    logLevel: "warning",
});

export const kModule = await WebAssembly.compile(await readFile(`${kBuilt}/engine.wasm`));

const { loadEngine, EngineError, CancelledError } = await import(pathToFileURL(`${kScripts}/engine.mjs`));
export const { EngineCore } = await import(pathToFileURL(`${kScripts}/engine-core.mjs`));
export { EngineError, CancelledError };

export function load(workers = 2) {
    return loadEngine({ wasm: kModule, worker: pathToFileURL(`${kScripts}/engine-worker.mjs`), workers });
}
