// A whole graph in an address: its JSON, deflated, in the alphabet of URLs.

import { isGraph } from "./graph";
import type { GraphDocument } from "./engine";

/** Of the text in a link, once it is inflated; a link that would hold more is refused while it is read. */
export const kLargestGraph = 1 << 20;
const kLongestLink = 1 << 20; // characters; browsers take twice as many in an address
const kLongestTitle = 80;

export interface Shared {
    graph: GraphDocument;
    /** How the page showed it, such as "sphere". */
    view?: string;
    title?: string;
}

export class LinkError extends Error {}

async function through(
    bytes: Uint8Array<ArrayBuffer>,
    stream: GenericTransformStream,
    most: number,
): Promise<Uint8Array<ArrayBuffer>> {
    const reader = (new Blob([bytes]).stream() as ReadableStream<unknown>)
        .pipeThrough(stream as unknown as ReadableWritablePair<Uint8Array, unknown>)
        .getReader();
    const parts: Uint8Array[] = [];
    let length = 0;
    for (;;) {
        const { done, value } = await reader.read();
        if (done) break;
        parts.push(value);
        length += value.length;
        if (length > most) {
            void reader.cancel();
            throw new LinkError("The link holds more than a graph could be.");
        }
    }
    const all = new Uint8Array(length);
    let at = 0;
    for (const part of parts) {
        all.set(part, at);
        at += part.length;
    }
    return all;
}

/** The part of an address that opens the graph; nothing where the graph is too large for one. */
export async function toHash(shared: Shared): Promise<string | undefined> {
    const text = new TextEncoder().encode(JSON.stringify(shared));
    if (text.length > kLargestGraph) return undefined;
    const packed = await through(text, new CompressionStream("deflate-raw"), Infinity);
    let binary = "";
    for (const byte of packed) binary += String.fromCharCode(byte);
    const link = btoa(binary).replaceAll("+", "-").replaceAll("/", "_").replaceAll("=", "");
    return link.length > kLongestLink ? undefined : `#graph=${link}`;
}

/** One line of text that a title may be. */
export function titleFrom(text: string): string {
    return [...text.replace(/[\s\p{C}]+/gu, " ").trim()].slice(0, kLongestTitle).join("");
}

/** Rejects with `LinkError` and a sentence for the reader. */
export async function fromLink(link: string): Promise<Shared> {
    let text: string;
    try {
        const binary = atob(link.replaceAll("-", "+").replaceAll("_", "/"));
        const packed = Uint8Array.from(binary, (character) => character.charCodeAt(0));
        const bytes = await through(packed, new DecompressionStream("deflate-raw"), kLargestGraph);
        text = new TextDecoder("utf-8", { fatal: true }).decode(bytes);
    } catch (error) {
        if (error instanceof LinkError) throw error;
        throw new LinkError("The link is damaged. Maybe its end got lost on the way.");
    }
    let value: unknown;
    try {
        value = JSON.parse(text);
    } catch {
        throw new LinkError("The link is damaged: what it holds is no graph.");
    }
    const shared = value as Partial<Shared> | null;
    if (typeof shared !== "object" || shared === null || !isGraph(shared.graph))
        throw new LinkError("The link holds no graph.");
    const title = typeof shared.title === "string" ? titleFrom(shared.title) : "";
    return {
        graph: shared.graph,
        ...(typeof shared.view === "string" ? { view: shared.view } : {}),
        ...(title === "" ? {} : { title }),
    };
}
