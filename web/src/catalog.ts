// The examples, as build.mjs puts them together from examples.json and the gallery.

import type { Channel } from "./engine";

export interface Example {
    /** Its file in examples/, without the ending. */
    readonly graph: string;
    readonly title: string;
    readonly picture: string;
    /** What the picture shows, in words. */
    readonly shows: string;
    /** A sentence or two of the gallery; Markdown's backticks may be in it. */
    readonly tells: string;
    readonly classes: readonly string[];
    readonly render: boolean;
    readonly channel: Channel;
    readonly camera?: string;
    readonly over?: string;
}

export interface Topic {
    readonly topic: string;
    readonly examples: readonly Example[];
}

declare const CATALOG: readonly Topic[];
export const kTopics = CATALOG;

export function findExample(graph: string): Example | undefined {
    return kTopics.flatMap((topic) => topic.examples).find((example) => example.graph === graph);
}

/** The folder that the scripts and their files lie in. */
export const kApp = new URL(".", import.meta.url);

export function pictureOf(example: Example): string {
    return new URL(`pictures/${example.picture}`, kApp).href;
}
