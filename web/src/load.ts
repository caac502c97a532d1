// What lies beside the page: the engine, the examples and their files.

import { kApp, type Example } from "./catalog";
import { loadEngine, type Engine, type GraphDocument } from "./engine";
import { filesOf, isGraph } from "./graph";
import { decodePicture } from "./pictures";

/** What lies in examples/, as build.mjs puts it there. */
declare const EXAMPLE_FILES: readonly string[];

let loading: Promise<Engine> | undefined;

/** The one engine of the page. Rejects with a sentence for the reader. */
export function engine(): Promise<Engine> {
    loading ??= loadEngine({
        wasm: new URL("engine.wasm", kApp),
        worker: new URL("engine-worker.js", kApp),
    }).catch((error: unknown) => {
        loading = undefined;
        throw new Error(
            typeof WebAssembly === "undefined"
                ? "This browser lacks WebAssembly, which the shaders run in."
                : `The engine couldn't be loaded: ${error instanceof Error ? error.message : String(error)}`,
        );
    });
    return loading;
}

async function fetched(name: string): Promise<Response | undefined> {
    // A graph from a link mustn't fetch anything else, and names of the reader's own files stay here.
    if (!EXAMPLE_FILES.includes(name)) return undefined;
    const response = await fetch(new URL(`examples/${name}`, kApp));
    return response.ok ? response : undefined;
}

export async function loadExample(example: Example): Promise<GraphDocument> {
    const graph: unknown = await (await fetched(`${example.graph}.json`))?.json();
    if (!isGraph(graph)) throw new Error(`The example ${example.graph} couldn't be loaded.`);
    return graph;
}

const given = new Set<string>();

/** Gives the engine those of a graph's files that the examples come with. Others are for the reader to drop. */
export async function giveFiles(to: Engine, document: GraphDocument): Promise<void> {
    const { pictures, models } = filesOf(document);
    const once = async (name: string, give: (response: Response) => Promise<void>) => {
        if (given.has(name)) return;
        const response = await fetched(name);
        if (response === undefined) return;
        await give(response);
        given.add(name);
    };
    await Promise.all([
        ...pictures.map((name) =>
            once(name, async (response) =>
                to.givePicture(name, await decodePicture(await response.blob(), name)),
            ),
        ),
        ...models.map((name) =>
            once(name, async (response) => {
                const { giveScene } = await import("./model-files");
                await giveScene(to, name, await response.arrayBuffer());
            }),
        ),
    ]);
}

/** A picture or model of that name is the reader's own from now on. */
export function isOwn(name: string): void {
    given.add(name);
}
