// What the page knows of the engine: the pack and the host's rooms as WebAssembly, one instance a worker.

import { JobRunner } from "./engine-jobs";
import { commandFor, documentOf, type Scenes } from "./engine-documents";
import { CancelledError, EngineError, type Problem } from "./engine-errors";
import { Pool } from "./engine-pool";

export { CancelledError, EngineError, type Problem };

/** What a class or source offers, as `fernwick list` names it. */
export type Output = "value" | "color" | "vector" | "surface";

/**
 * What a field holds. A `code` is set by the `value` of one of its choices; of an `int32` with choices it is a
 * number.
 */
export type FieldType =
    | "float"
    | "int32"
    | "bool"
    | "code"
    | "vector2"
    | "vector3"
    | "rgb" // linear light, usually 0 to 1
    | "rgba"
    | "string"
    | "shader" // a slot: the name of another shader of the graph, or null; any class or source fits
    | "file" // the name of a given picture
    | "colors"; // of a gradient: two or more, each of four numbers

export type FieldValue =
    number | boolean | string | null | readonly number[] | readonly (readonly number[])[];

export interface Choice {
    readonly value: string | number;
    readonly label: string;
}

export interface Field {
    /** As graphs address it: `fMode`, `fRange[3]`, `fBands[2].fCenter`. */
    readonly name: string;
    readonly type: FieldType;
    readonly label: string;
    readonly help: string;
    /** Of a new object; missing for slots. */
    readonly default?: FieldValue;
    /** Such as "%" or "nm". */
    readonly unit?: string;
    /** Ends included; what lies outside is refused, unless the range is `loose`. */
    readonly minimum?: number;
    readonly maximum?: number;
    /** The shader takes values outside too, in its own way: a graph with such a value gets a doubt. */
    readonly loose?: boolean;
    /** The field counts only where another one holds this value. */
    readonly onlyWith?: { readonly field: string; readonly value: number | string };
    readonly choices?: readonly Choice[];
    /** Written by the shader itself: to be shown, not set. */
    readonly derived?: boolean;
}

/** A class of the pack, or a source of the host. */
export interface ShaderTable {
    readonly name: string;
    /** The key that names it in a graph: `{"class": "Weave"}`, `{"source": "color"}`. */
    readonly kind: "class" | "source";
    readonly purpose: string;
    readonly outputs: readonly Output[];
    /** Of a class: what it reads of a sample, such as "UV". */
    readonly needs: readonly string[];
    readonly fields: readonly Field[];
}

/** A graph as a document: an object, or its JSON text. See docs/graph.schema.json. */
export type Graph = string | GraphDocument;
export interface GraphDocument {
    $schema?: string;
    shaders: { [name: string]: { class?: string; source?: string; [field: string]: unknown } };
    output: string;
    scene?: unknown;
}

/** What of the output goes into the picture, as `--output` of `fernwick bake` has it. */
export type Channel =
    "color" | "main" | "alpha" | "second" | "third" | "fourth" | "normal" | "coverage" | "value" | "lit";

export interface Frames {
    readonly first: number;
    readonly last: number;
}

/** What there is to know of a graph before it is baked. */
export type Check =
    | { readonly ok: false; readonly problem: Problem }
    | {
          readonly ok: true;
          /** Taken as it is, and yet maybe a slip. */
          readonly doubts: readonly Problem[];
          /** What the output offers for `Request.channel`. */
          readonly channels: readonly Channel[];
          /** The frames of the first and the last key; missing where nothing is keyed. */
          readonly frames?: Frames;
          /** Names of the elements with a camera, the one that is rendered from first; none where there is nothing
           * to render: no scene, or none with a camera. */
          readonly cameras: readonly string[];
      };

export type Shape = "sphere" | "torus" | "plane" | "box" | "saddle";

/** What is shaded. */
export type Surface =
    /** The UV square, U to the right and V up, as `fernwick bake` has it. */
    | { readonly kind: "square" }
    /**
     * A map over the U and V of a shape, for a viewer to lay on it: each texel is a point of the shape's surface,
     * which stands in the graph's scene as the element "Shape" or, for a graph without a scene, as in `documentOf`,
     * with a "Lamp", a "Target" and a "Camera" around it. `shapeMesh` gives the same surface as triangles.
     */
    | { readonly kind: "shape"; readonly shape: Shape }
    /** A map over the U and V of a given mesh, as `fernwick bake --onto` has it. Transparent beyond its margin. */
    | { readonly kind: "mesh"; readonly mesh: string; readonly margin?: number }
    /** What the scene's camera sees, as `fernwick render` has it. */
    | { readonly kind: "render"; readonly camera?: string }
    /**
     * The output on a shape in front of a camera, as `fernwick shade --on` shows it; the graph's own scene doesn't
     * count.
     */
    | { readonly kind: "view"; readonly shape: Shape; readonly lit?: boolean };

export interface Region {
    readonly left: number;
    readonly top: number;
    /** Not included, as the bottom isn't. */
    readonly right: number;
    readonly bottom: number;
}

/**
 * The numbers of a picture, four a pixel, row by row from the top, straight alpha. `rgba8` and `rgba16` are what a
 * PNG of `fernwick` holds: colours encoded as sRGB, numbers as they are, normals from -1 to 1. `float` is linear,
 * unclamped.
 */
export type Format = "rgba8" | "rgba16" | "float";
export interface Formats {
    rgba8: Uint8ClampedArray<ArrayBuffer>; // fits ImageData
    rgba16: Uint16Array<ArrayBuffer>;
    float: Float32Array<ArrayBuffer>;
}

export interface Picture<F extends Format = Format> {
    readonly format: F;
    readonly width: number;
    readonly height: number;
    readonly pixels: Formats[F];
}

export interface Request<F extends Format = Format> {
    readonly graph: Graph;
    /** In pixels, 1 to 16384. */
    readonly width: number;
    readonly height: number;
    /** The UV square, if missing. */
    readonly surface?: Surface;
    /** "color", if missing. Of a render or view: nothing else. */
    readonly channel?: Channel;
    /** 1, if missing: the frame of keyed values. */
    readonly frame?: number;
    /** A pixel; 1 if missing, 4 of a render or view. */
    readonly samples?: number;
    /** The part that is wanted; it is what the whole picture has there. */
    readonly region?: Region;
    /** A graph whose colour lies under this one's, by its alpha. For the square and maps. */
    readonly over?: Graph;
    /** "rgba8", if missing. */
    readonly format?: F;
    /**
     * How many coarser pictures come before the full one, each with half the width and height of the next; none if
     * missing. Of a 512 x 512 picture with two, one of 128 x 128 comes first, then one of 256 x 256.
     */
    readonly coarse?: number;
    /** A newer job with the same slot cancels this one. Nothing is cancelled without. */
    readonly slot?: string;
    /** Higher goes first among jobs that wait for a worker; 0 if missing. Give the wall of examples less than 0. */
    readonly priority?: number;
}

/** A part of a picture that is ready, before all of it is. */
export interface Part<F extends Format = Format> {
    /** 0 for the full picture, 1 for half its width and height, and so on: the picture that the part is of. */
    readonly level: number;
    /** Of the picture of that level (of its region), in pixels. */
    readonly width: number;
    readonly height: number;
    /** Where the part lies in it. */
    readonly left: number;
    readonly top: number;
    readonly picture: Picture<F>;
    /** 0 to 1, of the whole job. */
    readonly progress: number;
}

export interface Job<F extends Format = Format> {
    /** The full picture of the region. Rejects with `EngineError` or `CancelledError`. */
    readonly done: Promise<Picture<F>>;
    cancel(): void;
}

/** Triangles for three.js and for `Engine.giveMesh`; `normals` and `uvs` may be empty there. V up. */
export interface Mesh {
    readonly positions: Float32Array; // three a vertex
    readonly normals: Float32Array; // three a vertex
    readonly uvs: Float32Array; // two a vertex
    readonly indices: Uint32Array; // three a triangle, counter-clockwise outside
}

/**
 * A picture that is given to graphs. Integers are taken as sRGB and floats as linear, unless the source says
 * otherwise.
 */
export interface GivenPicture {
    readonly width: number;
    readonly height: number;
    readonly pixels: Uint8ClampedArray | Uint8Array | Uint16Array | Float32Array; // RGBA, straight alpha, top row first
}

export interface Engine {
    readonly classes: readonly ShaderTable[];
    readonly sources: readonly ShaderTable[];
    /** How many workers shade. */
    readonly workers: number;

    /** By name, a class before a source. */
    table(name: string): ShaderTable | undefined;

    /**
     * Makes a picture known under the name that graphs have in a source's `file`, in place of any earlier one.
     * Rejects one whose pixels are more or fewer than its size tells. Graphs that are asked for afterwards have it;
     * no need to wait.
     */
    givePicture(name: string, picture: GivenPicture): Promise<void>;
    /**
     * Makes a mesh known: for surfaces, for the `file` of an element's shape of the kind "model", and for a scene's
     * `file`, where it is the element "Mesh". Rejects what is no mesh: indices that lead nowhere, arrays that don't
     * fit each other.
     */
    giveMesh(name: string, mesh: Mesh): Promise<void>;
    forget(name: string): void;

    /** Reads a graph and makes it live. Never rejects for a graph. */
    check(graph: Graph, frame?: number): Promise<Check>;

    /**
     * Bakes or renders in tiles, over all workers. `onPart` gets coarser pictures whole, then tiles of the full one.
     */
    bake<F extends Format = "rgba8">(request: Request<F>, onPart?: (part: Part<F>) => void): Job<F>;

    /** A shape as triangles, with the U and V of its maps, in the coordinates of its element. */
    shapeMesh(shape: Shape): Promise<Mesh>;

    /** The graph that a request is of: of a shape or view with what stands around the shape in its scene. Throws
     * `EngineError` for what is no JSON. */
    documentOf(request: Request): GraphDocument;

    /**
     * The command line that makes the same picture of the request's document that was saved under `graphFile`; of a
     * shape it renders the shape. Given pictures and meshes, and a graph below, are files of the names that they are
     * given by.
     * @param pictureFile with `####` for the number where frames are given
     * @param overFile of the request's `over`
     * @param frames all of them instead of the request's one
     */
    command(
        request: Request,
        graphFile: string,
        pictureFile: string,
        overFile?: string,
        frames?: Frames,
    ): string;

    /** Ends the workers; jobs are cancelled. */
    dispose(): void;
}

export interface EngineOptions {
    /** Where `engine.wasm` lies, or what it is compiled to; beside this script, if missing. */
    readonly wasm?: string | URL | WebAssembly.Module;
    /** Where `engine-worker.js` lies; beside this script, if missing. */
    readonly worker?: string | URL;
    /** One a processor, if missing. */
    readonly workers?: number;
}

/** The numbers of what can't be in a graph are refused as the engine does: by name and what is expected. */
function refuse(message: string): never {
    throw new EngineError({ pointer: "", message });
}

function requirePicture({ width, height, pixels }: GivenPicture): void {
    const kLongestSide = 16384;
    const isSide = (side: number) => Number.isInteger(side) && side >= 1 && side <= kLongestSide;
    if (!isSide(width) || !isSide(height))
        refuse(`a picture has 1 to ${kLongestSide} pixels a side, not ${width} x ${height}`);
    if (pixels.length !== 4 * width * height)
        refuse(`${width} x ${height} pixels have ${4 * width * height} numbers, not ${pixels.length}`);
}

function requireMesh({ positions, normals, uvs, indices }: Mesh): void {
    const vertices = positions.length / 3;
    if (!Number.isInteger(vertices) || indices.length % 3 !== 0)
        refuse("a mesh has three numbers a vertex and three a triangle");
    if (normals.length !== 0 && normals.length !== 3 * vertices)
        refuse("a mesh has three numbers of normals a vertex, or none");
    if (uvs.length !== 0 && uvs.length !== 2 * vertices)
        refuse("a mesh has two numbers of UV a vertex, or none");
}

class PooledEngine implements Engine {
    readonly #pool: Pool;
    readonly #tables: Tables;
    readonly classes: readonly ShaderTable[];
    readonly sources: readonly ShaderTable[];
    readonly #jobs: JobRunner;

    constructor(pool: Pool, tables: Tables) {
        this.#pool = pool;
        this.#tables = tables;
        this.classes = tables.classes.map((table) => ({ ...table, kind: "class" }));
        this.sources = tables.sources.map((table) => ({ ...table, kind: "source", needs: ["UV"] }));
        this.#jobs = new JobRunner(pool, tables.scenes);
    }

    get workers(): number {
        return this.#pool.size;
    }

    table(name: string): ShaderTable | undefined {
        return [...this.classes, ...this.sources].find((table) => table.name === name);
    }

    async givePicture(name: string, picture: GivenPicture): Promise<void> {
        requirePicture(picture);
        await this.#pool.give({ kind: "picture", name, picture });
    }

    async giveMesh(name: string, mesh: Mesh): Promise<void> {
        requireMesh(mesh);
        await this.#pool.give({ kind: "mesh", name, mesh });
    }

    forget(name: string): void {
        this.#pool.forget(name);
    }

    async check(graph: Graph, frame = 1): Promise<Check> {
        try {
            const text = typeof graph === "string" ? graph : JSON.stringify(graph);
            const { value } = await this.#pool.run({ call: "check", graph: text, frame }, Infinity);
            const { frames, ...rest } = value as unknown as Checked;
            return { ok: true, ...rest, ...(frames && { frames: { first: frames[0], last: frames[1] } }) };
        } catch (error) {
            if (!(error instanceof EngineError)) throw error;
            const { pointer, message, line, column } = error;
            return {
                ok: false,
                problem: { pointer, message, ...(line && { line }), ...(column && { column }) },
            };
        }
    }

    bake<F extends Format = "rgba8">(request: Request<F>, onPart?: (part: Part<F>) => void): Job<F> {
        return this.#jobs.start(request, onPart);
    }

    async shapeMesh(shape: Shape): Promise<Mesh> {
        const { value, numbers } = await this.#pool.run({ call: "shapeMesh", shape }, Infinity);
        const vertices = value["vertices"] as number;
        const floats = (start: number, count: number) =>
            new Float32Array(numbers!, 4 * start * vertices, count * vertices);
        return {
            positions: floats(0, 3),
            normals: floats(3, 3),
            uvs: floats(6, 2),
            indices: new Uint32Array(numbers!, 4 * 8 * vertices),
        };
    }

    documentOf(request: Request): GraphDocument {
        return documentOf(request, this.#tables.scenes);
    }

    command(
        request: Request,
        graphFile: string,
        pictureFile: string,
        overFile = "over.json",
        frames?: Frames,
    ): string {
        return commandFor(request, graphFile, pictureFile, overFile, frames);
    }

    dispose(): void {
        this.#jobs.cancelAll();
        this.#pool.dispose();
    }
}

interface Tables {
    readonly classes: readonly Omit<ShaderTable, "kind">[];
    readonly sources: readonly Omit<ShaderTable, "kind" | "needs">[];
    readonly scenes: Scenes;
}

type Checked = Omit<Extract<Check, { ok: true }>, "ok" | "frames"> & {
    readonly frames?: readonly [number, number];
};

async function compiled(wasm: string | URL | WebAssembly.Module): Promise<WebAssembly.Module> {
    if (wasm instanceof WebAssembly.Module) return wasm;
    const response = await fetch(wasm);
    if (!response.ok) throw new Error(`${wasm} can't be fetched: ${response.status} ${response.statusText}`);
    // Servers of static files may not tell the type that compiling while fetching asks for.
    return WebAssembly.compile(await response.arrayBuffer());
}

/**
 * Loads the engine: one instance in each worker, compiled once. Rejects where it can't be fetched or WebAssembly
 * lacks.
 */
export async function loadEngine(options: EngineOptions = {}): Promise<Engine> {
    const module = await compiled(options.wasm ?? new URL("engine.wasm", import.meta.url));
    const script = options.worker ?? new URL("engine-worker.js", import.meta.url);
    const pool = new Pool(module, script, options.workers ?? navigator.hardwareConcurrency ?? 2);
    const { value } = await pool.run({ call: "tables" }, Infinity);
    return new PooledEngine(pool, value as unknown as Tables);
}
