// The files of scenes, as the engine takes them: their nodes are elements of the graph.

import type { GraphDocument } from "./engine";

export interface Element {
    name: string;
    position: number[];
    rotation: number[];
    shape?: { kind: "model"; file: string };
    light?: { [key: string]: unknown };
    camera?: { fieldOfView: number };
}

const known = new Map<string, Element[]>();

/** Takes what a scene's file is made of; `giveScene` of model-files.ts reads it. */
export function know(file: string, elements: Element[]): void {
    known.set(file, elements);
}

/** The graph as the engine takes it: the nodes of its scene's file are elements. The graph itself, where it has none. */
export function withScene(document: GraphDocument): GraphDocument {
    const scene = document.scene as
        { file?: unknown; elements?: Element[]; nodes?: { [name: string]: unknown } } | undefined;
    const elements = typeof scene?.file === "string" ? known.get(scene.file) : undefined;
    if (scene === undefined || elements === undefined) return document;
    const { file, ...rest } = scene;
    return { ...document, scene: { ...rest, elements: [...elements, ...(scene.elements ?? [])] } };
}
