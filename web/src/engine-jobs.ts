// Pictures in parts: which regions the workers shade, and how they become a whole.

import type { Format, Formats, Job, Part, Picture, Region, Request } from "./engine";
import { documentOf, textOf, type Scenes } from "./engine-documents";
import { CancelledError, EngineError } from "./engine-errors";
import type { Json, Reply } from "./engine-core";
import type { Pool } from "./engine-pool";

/** The host shades tiles of this side whole, so that parts that end with them cost nothing twice. In pixels. */
const kTileSide = 128;

const kNumbers: { readonly [F in Format]: new (room: ArrayBuffer | number) => Formats[F] } = {
    rgba8: Uint8ClampedArray as new (room: ArrayBuffer | number) => Formats["rgba8"],
    rgba16: Uint16Array as new (room: ArrayBuffer | number) => Formats["rgba16"],
    float: Float32Array as new (room: ArrayBuffer | number) => Formats["float"],
};

/** The request for one picture of a job, as the engine takes it. */
type Call = Json & { readonly width: number; readonly height: number };

/** The picture of a job, or a coarser one. */
interface Level {
    readonly number: number;
    readonly isMesh: boolean; // whose margin is filled
    readonly call: Call;
    readonly region: Region;
}

function tilesOf(region: Region): Region[] {
    const tiles: Region[] = [];
    const starts = (first: number, end: number) => {
        const all = [first];
        for (let next = (Math.floor(first / kTileSide) + 1) * kTileSide; next < end; next += kTileSide)
            all.push(next);
        return all;
    };
    const lefts = starts(region.left, region.right);
    const tops = starts(region.top, region.bottom);
    for (const [row, top] of tops.entries())
        for (const [column, left] of lefts.entries()) {
            const right = lefts[column + 1] ?? region.right;
            tiles.push({ left, top, right, bottom: tops[row + 1] ?? region.bottom });
        }
    return tiles;
}

/** Puts the rows of a part where they belong. */
function store<F extends Format>(whole: Picture<F>, part: Picture<F>, left: number, top: number): void {
    for (let y = 0; y < part.height; ++y)
        whole.pixels.set(
            part.pixels.subarray(4 * part.width * y, 4 * part.width * (y + 1)) as never,
            4 * (whole.width * (top + y) + left),
        );
}

export class JobRunner {
    readonly #pool: Pool;
    readonly #scenes: Scenes;
    readonly #slots = new Map<string, Job>();
    readonly #running = new Set<Job>();

    constructor(pool: Pool, scenes: Scenes) {
        this.#pool = pool;
        this.#scenes = scenes;
    }

    start<F extends Format>(request: Request<F>, onPart?: (part: Part<F>) => void): Job<F> {
        if (request.slot !== undefined) this.#slots.get(request.slot)?.cancel();
        const run = new Run<F>(this.#pool, request, this.#scenes, onPart);
        const job: Job<F> = { done: run.finish(), cancel: () => run.cancel() };
        if (request.slot !== undefined) this.#slots.set(request.slot, job as unknown as Job);
        this.#running.add(job as unknown as Job);
        const forget = () => {
            this.#running.delete(job as unknown as Job);
            if (request.slot !== undefined && this.#slots.get(request.slot) === (job as unknown as Job))
                this.#slots.delete(request.slot);
        };
        job.done.then(forget, forget);
        return job;
    }

    cancelAll(): void {
        for (const job of this.#running) job.cancel();
    }
}

/** One job on its way. */
class Run<F extends Format> {
    readonly #pool: Pool;
    readonly #request: Request<F>;
    readonly #scenes: Scenes;
    readonly #onPart: ((part: Part<F>) => void) | undefined;
    readonly #format: F;
    #isOver = false;
    #stop: (error: Error) => void = () => {};
    #pixels = 0; // of all levels
    #pixelsDone = 0;

    constructor(
        pool: Pool,
        request: Request<F>,
        scenes: Scenes,
        onPart: ((part: Part<F>) => void) | undefined,
    ) {
        this.#pool = pool;
        this.#request = request;
        this.#scenes = scenes;
        this.#onPart = onPart;
        this.#format = request.format ?? ("rgba8" as F);
    }

    cancel(): void {
        this.#stop(new CancelledError("the picture was cancelled"));
    }

    async finish(): Promise<Picture<F>> {
        const stopped = new Promise<never>((_, reject) => (this.#stop = reject));
        try {
            return await Promise.race([stopped, this.#shadeLevels()]);
        } finally {
            this.#isOver = true;
        }
    }

    async #shadeLevels(): Promise<Picture<F>> {
        const levels = this.#levels();
        for (const { region } of levels)
            this.#pixels += (region.right - region.left) * (region.bottom - region.top);
        // All wait in the queue at once, in order, so that no worker is idle between them. What a quicker worker has of
        // a finer level is told when the coarser ones are, which would hide it.
        const pictures: Promise<Picture<F>>[] = [];
        for (const level of levels) pictures.push(this.#shade(level, pictures.at(-1)));
        return (await Promise.all(pictures)).at(-1)!;
    }

    /** From the coarsest to the full one. */
    #levels(): Level[] {
        const { width, height } = this.#request;
        const call = this.#callOf();
        const region = this.#request.region ?? { left: 0, top: 0, right: width, bottom: height };
        if (
            !Number.isInteger(width) ||
            !Number.isInteger(height) ||
            width < 1 ||
            height < 1 ||
            width > 16384 ||
            height > 16384
        )
            throw new EngineError({
                pointer: "",
                message: `a picture has 1 to 16384 pixels a side, not ${width} x ${height}`,
            });
        const { left, top, right, bottom } = region;
        if (
            ![left, top, right, bottom].every(Number.isInteger) ||
            !(0 <= left && left < right && right <= width && 0 <= top && top < bottom && bottom <= height)
        )
            throw new EngineError({ pointer: "", message: "region: expected a part of the picture" });
        const isMesh = (call["surface"] as { readonly kind: string }).kind === "mesh";
        if (isMesh && (right - left !== width || bottom - top !== height))
            throw new EngineError({
                pointer: "",
                message: "region: a picture of a mesh is baked as a whole",
            });
        const levels: Level[] = [];
        for (let number = Math.min(this.#request.coarse ?? 0, 14); number > 0; --number) {
            const shrunk = (length: number) => Math.max(Math.round(length / 2 ** number), 1);
            const size = { width: shrunk(width), height: shrunk(height) };
            const from = (edge: number, most: number) => Math.min(Math.floor(edge / 2 ** number), most - 1);
            const to = (edge: number, start: number, most: number) =>
                Math.min(Math.max(Math.ceil(edge / 2 ** number), start + 1), most);
            const start = { left: from(left, size.width), top: from(top, size.height) };
            const end = {
                right: to(right, start.left, size.width),
                bottom: to(bottom, start.top, size.height),
            };
            levels.push({
                number,
                isMesh,
                call: { ...call, ...size, samples: 1 },
                region: { ...start, ...end },
            });
        }
        return [...levels, { number: 0, isMesh, call: { ...call, width, height }, region }];
    }

    #callOf(): Omit<Call, "width" | "height"> {
        const { graph, surface = { kind: "square" }, channel, frame, samples, over } = this.#request;
        const needsScene = surface.kind === "shape" || surface.kind === "view";
        const text = needsScene
            ? JSON.stringify(documentOf(this.#request as Request, this.#scenes))
            : textOf(graph);
        const isBox = surface.kind === "shape" && surface.shape === "box"; // which is a mesh
        const surfaces = {
            square: surface,
            shape: isBox
                ? { kind: "mesh", mesh: "", node: "Shape", margin: 0 }
                : { kind: "shape", element: "Shape" },
            mesh: surface,
            render: surface,
            view: { kind: "render" },
        };
        const chosen = surfaces[surface.kind];
        if (chosen === undefined)
            throw new EngineError({ pointer: "", message: `surface: there is no "${surface.kind}"` });
        return {
            call: "bake",
            graph: text,
            surface: chosen,
            ...(channel !== undefined && { channel }),
            ...(frame !== undefined && { frame }),
            ...(samples !== undefined && { samples }),
            ...(over !== undefined && { over: textOf(over) }),
        };
    }

    /** Shades all tiles of a level. A mesh's margin is filled when all of them are there. */
    async #shade(level: Level, coarser: Promise<unknown> | undefined): Promise<Picture<F>> {
        const picture = level.isMesh
            ? await this.#fill(level, await this.#assemble(level, "float", coarser))
            : await this.#assemble(level, this.#format, coarser);
        await coarser;
        if (level.number > 0 || level.isMesh) this.#tell(level, picture, level.region.left, level.region.top);
        return picture;
    }

    async #assemble<G extends Format>(
        level: Level,
        format: G,
        coarser: Promise<unknown> | undefined,
    ): Promise<Picture<G>> {
        const { region } = level;
        const width = region.right - region.left;
        const height = region.bottom - region.top;
        const whole: Picture<G> = { format, width, height, pixels: new kNumbers[format](4 * width * height) };
        await Promise.all(
            tilesOf(region).map(async ({ left, top, right, bottom }) => {
                const request = { ...level.call, format, region: [left, top, right, bottom] };
                const part = this.#pictureOf(await this.#ask(request), format);
                this.#pixelsDone += part.width * part.height;
                store(whole, part, left - region.left, top - region.top);
                await coarser;
                if (level.number === 0 && !level.isMesh)
                    this.#tell(level, part as unknown as Picture<F>, left, top);
            }),
        );
        return whole;
    }

    async #fill(level: Level, floats: Picture<"float">): Promise<Picture<F>> {
        const request = { ...level.call, call: "fillMargin", format: this.#format };
        return this.#pictureOf(await this.#ask(request, { pixels: floats.pixels }), this.#format);
    }

    #ask(request: Json, numbers?: { readonly [name: string]: ArrayBufferView }): Promise<Reply> {
        return new Promise((done, failed) => {
            this.#pool.add({
                priority: this.#request.priority ?? 0,
                request,
                ...(numbers && { numbers }),
                isWanted: () => !this.#isOver,
                done,
                failed,
            });
        });
    }

    #pictureOf<G extends Format>({ value, numbers }: Reply, format: G): Picture<G> {
        return {
            format,
            width: value["width"] as number,
            height: value["height"] as number,
            pixels: new kNumbers[format](numbers!),
        };
    }

    #tell(level: Level, picture: Picture<F>, left: number, top: number): void {
        if (this.#isOver || this.#onPart === undefined) return;
        const { region } = level;
        this.#onPart({
            level: level.number,
            width: region.right - region.left,
            height: region.bottom - region.top,
            left: left - region.left,
            top: top - region.top,
            picture,
            progress: this.#pixelsDone / this.#pixels,
        });
    }
}
