// Graphs with what a surface needs around them, and the command lines for them.

import type { Frames, GraphDocument, Graph, Request, Shape } from "./engine";
import { EngineError } from "./engine-errors";

/** A scene around each shape, as the engine tells them. */
export type Scenes = {
    readonly [shape: string]: { readonly elements: readonly { readonly name: string }[] };
};

export function textOf(graph: Graph): string {
    return typeof graph === "string" ? graph : JSON.stringify(graph);
}

function parsed(graph: Graph): GraphDocument {
    if (typeof graph !== "string") return graph;
    try {
        return JSON.parse(graph) as GraphDocument;
    } catch (error) {
        throw new EngineError({
            pointer: "",
            message: `not JSON: ${error instanceof Error ? error.message : String(error)}`,
        });
    }
}

function isRecord(value: unknown): value is { readonly [key: string]: unknown } {
    return typeof value === "object" && value !== null && !Array.isArray(value);
}

/** The graph with the shape in its scene, or in one made for it. */
function withShape(graph: GraphDocument, shape: Shape, scenes: Scenes): GraphDocument {
    const around = scenes[shape];
    if (around === undefined)
        throw new EngineError({ pointer: "", message: `surface: there is no shape "${shape}"` });
    if (graph.scene === undefined) return { ...graph, scene: around };
    if (!isRecord(graph.scene)) return graph; // which the engine refuses
    const elements = Array.isArray(graph.scene["elements"]) ? (graph.scene["elements"] as unknown[]) : [];
    const others = elements.filter((element) => !isRecord(element) || element["name"] !== "Shape");
    return {
        ...graph,
        scene: {
            ...graph.scene,
            elements: [...others, around.elements.find(({ name }) => name === "Shape")],
        },
    };
}

export function documentOf(request: Request, scenes: Scenes): GraphDocument {
    const graph = parsed(request.graph);
    const surface = request.surface;
    if (!isRecord(graph)) return graph;
    if (surface?.kind === "shape") return withShape(graph, surface.shape, scenes);
    if (surface?.kind !== "view") return graph;
    const { scene, ...bare } = graph;
    const viewed = withShape(bare, surface.shape, scenes);
    if (!surface.lit) return viewed;
    const around = viewed.scene as { readonly elements: readonly { readonly name: string }[] };
    const elements = around.elements.map((element) =>
        element.name === "Shape" ? { ...element, shading: "lit" } : element,
    );
    return { ...viewed, scene: { ...around, elements } };
}

/** What a shell takes for one word. */
function quoted(text: string): string {
    return /^[\w./,:=@%+-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`;
}

export function commandFor(
    request: Request,
    graphFile: string,
    pictureFile: string,
    overFile: string,
    frames: Frames | undefined,
): string {
    const surface = request.surface ?? { kind: "square" };
    const isRendered = surface.kind === "render" || surface.kind === "view" || surface.kind === "shape";
    const channel = request.channel ?? "color";
    const words = ["fernwick", isRendered ? "render" : "bake", graphFile];
    if (surface.kind === "mesh") words.push("--onto", surface.mesh);
    if (surface.kind === "mesh" && surface.margin !== undefined) words.push("--margin", `${surface.margin}`);
    if (surface.kind === "render" && surface.camera !== undefined) words.push("--camera", surface.camera);
    if (request.width !== 512 || request.height !== 512)
        words.push("--size", `${request.width}x${request.height}`);
    if (request.region !== undefined) {
        const { left, top, right, bottom } = request.region;
        words.push("--region", [left, top, right, bottom].join(","));
    }
    if (!isRendered && channel !== "color") words.push("--output", channel);
    if (!isRendered && request.over !== undefined) words.push("--over", overFile);
    const samples = request.samples ?? (isRendered ? 4 : 1);
    if (isRendered || samples !== 1) words.push("--samples", `${samples}`);
    if (frames !== undefined) words.push("--frames", `${frames.first}-${frames.last}`);
    else if (request.frame !== undefined && request.frame !== 1) words.push("--frames", `${request.frame}`);
    const isColor = isRendered || !["alpha", "coverage", "value", "normal"].includes(channel);
    if (request.format === "rgba16" && isColor) words.push("--bits", "16");
    if ((request.format ?? "rgba8") === "rgba8" && !isColor) words.push("--bits", "8");
    if (request.format === "float") words.push("--straight");
    return [...words, "-o", pictureFile].map(quoted).join(" ");
}
