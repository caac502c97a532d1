// What is being worked on: the graph, its history, what is selected and how it is shown.

import {
    EngineError,
    type Channel,
    type Check,
    type Engine,
    type Field,
    type FieldValue,
    type Frames,
    type GraphDocument,
    type Problem,
    type Shape,
} from "./engine";
import {
    given,
    isKeyed,
    pointerTo,
    renamed,
    shaderOf,
    tableName,
    turned,
    valueAt,
    withField,
    withKey,
    withoutKey,
    withNewShader,
    withoutShader,
    type Between,
    type TableOf,
} from "./graph";
import { History } from "./history";
import { withScene } from "./models";

/** What the picture lies on. */
export type Ground = "square" | "scene" | "model" | Extract<Shape, "sphere" | "torus">;

export interface View {
    ground: Ground;
    channel: Channel;
    /** Pixels each way of the square. */
    size: number;
    camera?: string;
    /** A source under the colour, such as "checker". */
    over?: string;
    /** The last frame to choose from, where keys may come; those of the keys alone if missing. */
    last?: number;
}

/** Frames of a graph that is about to get its first keys. */
const kFrames = 24;
export const kMostFrames = 9999;

type Told = "document" | "selection" | "view" | "frame" | "frames" | "check";

export class Session extends EventTarget {
    readonly engine: Engine;
    readonly tableOf: TableOf;
    /** As it was opened. */
    readonly start: GraphDocument;
    readonly title: string;
    selected: string;
    view: View;
    frame = 1;
    /** Of the document as it is; the one before stays until the engine has read the new one. */
    check: Check | undefined;
    problem: Problem | undefined;
    /** The last check that found no problem: what it offers stays while the next document has one. */
    offered: Extract<Check, { ok: true }> | undefined;
    #history: History<GraphDocument>;
    #checking = false;
    #unchecked = false;
    #isRefused = false;

    constructor(engine: Engine, title: string, document: GraphDocument, view: View) {
        super();
        this.engine = engine;
        this.tableOf = (name) => engine.table(name);
        this.title = title;
        this.start = document;
        this.view = view;
        this.selected = this.#firstSelected(document);
        this.#history = new History(document);
    }

    get document(): GraphDocument {
        return this.#history.present;
    }
    get changed(): boolean {
        return this.document !== this.start;
    }
    /** To choose from: those of the keys, and those where the reader wants to set some. */
    get frames(): Frames | undefined {
        const keyed = this.offered?.frames;
        if (this.view.last === undefined) return keyed;
        const { first, last } = keyed ?? { first: 1, last: 1 };
        return { first: Math.min(first, 1), last: Math.max(last, this.view.last) };
    }
    get canUndo(): boolean {
        return this.#history.canUndo;
    }
    get canRedo(): boolean {
        return this.#history.canRedo;
    }

    /** Sets a field, or with `undefined` takes it back to its default. A keyed field gets a key at the frame. */
    set(name: string, field: Field, value: FieldValue | undefined): void {
        const shader = shaderOf(this.document, name);
        if (shader === undefined) return;
        const stands = given(shader, field.name);
        const next = isKeyed(stands) && value !== undefined ? withKey(stands, this.frame, value) : value;
        this.edit(withField(this.document, name, field, next), pointerTo(name, shader, field.name));
    }

    /** Sets a key at the frame, or takes the one there away. Without its last key a field stays as it was there. */
    toggleKey(name: string, field: Field): void {
        const shader = shaderOf(this.document, name);
        if (shader === undefined) return;
        const stands = given(shader, field.name);
        const curve = isKeyed(stands) ? stands : { keys: [] };
        const value = valueAt(shader, field, this.frame);
        const isHere = curve.keys.some(([frame]) => frame === this.frame);
        const next = isHere ? withoutKey(curve, this.frame) : withKey(curve, this.frame, value);
        this.edit(withField(this.document, name, field, next.keys.length === 0 ? value : next));
    }

    setBetween(name: string, field: Field, between: Between): void {
        const shader = shaderOf(this.document, name);
        const curve = shader && given(shader, field.name);
        if (isKeyed(curve)) this.edit(withField(this.document, name, field, { ...curve, between }));
    }

    plugNew(name: string, field: Field, tableNamed: string): string | undefined {
        const table = this.tableOf(tableNamed);
        if (table === undefined) return undefined;
        const { document, added } = withNewShader(this.document, name, field, table);
        this.edit(document);
        return added;
    }

    remove(name: string): void {
        const document = withoutShader(this.document, name, this.tableOf);
        if (this.selected === name) this.selected = document.output;
        this.edit(document);
        this.#tell("selection");
    }

    rename(from: string, to: string): void {
        if (this.selected === from) this.selected = to;
        this.edit(renamed(this.document, from, to, this.tableOf));
        this.#tell("selection");
    }

    makeOutput(name: string): void {
        this.edit({ ...this.document, output: name });
    }

    /** Makes a shader one of another class or source; it keeps the fields that both have. */
    turnInto(name: string, tableNamed: string): void {
        const table = this.tableOf(tableNamed);
        if (table !== undefined) this.edit(turned(this.document, name, table));
    }

    edit(document: GraphDocument, mark = ""): void {
        if (document === this.document) return;
        this.#history.push(document, mark);
        this.#changed();
    }

    undo(): void {
        if (!this.canUndo) return;
        this.#history.undo();
        this.#changed();
    }
    redo(): void {
        if (!this.canRedo) return;
        this.#history.redo();
        this.#changed();
    }

    select(name: string): void {
        if (shaderOf(this.document, name) === undefined) return;
        this.selected = name;
        this.#tell("selection");
    }

    show(view: Partial<View>): void {
        this.view = { ...this.view, ...view };
        this.#tell("view");
    }

    goTo(frame: number): void {
        if (frame === this.frame) return;
        this.frame = frame;
        this.#tell("frame");
    }

    /** Offers frames up to a last one, so that keys can be set there. */
    animate(last = kFrames): void {
        this.view = { ...this.view, last };
        this.#tell("frames");
        const { first, last: end } = this.frames!;
        this.goTo(Math.min(Math.max(this.frame, first), end));
    }

    /** The engine refused to shade: `error` is its reason. */
    refused(error: unknown): void {
        this.#isRefused = true;
        this.problem =
            error instanceof EngineError
                ? error
                : { pointer: "", message: error instanceof Error ? error.message : String(error) };
        this.#tell("check");
    }

    /** A picture came: what the last one was refused for is over. */
    shaded(): void {
        if (!this.#isRefused) return;
        this.#isRefused = false;
        this.#judge();
    }

    /** Pictures or models came: the same document may be fine now. */
    async recheck(): Promise<void> {
        this.#unchecked = true;
        if (this.#checking) return;
        this.#checking = true;
        while (this.#unchecked) {
            this.#unchecked = false;
            this.check = await this.engine.check(withScene(this.document), this.frame);
        }
        this.#checking = false;
        if (this.check?.ok) this.offered = this.check;
        this.#judge();
    }

    /** The problem is the one that the last check found, if any. */
    #judge(): void {
        this.problem = this.check?.ok === false ? this.check.problem : undefined;
        this.#tell("check");
    }

    #changed(): void {
        if (shaderOf(this.document, this.selected) === undefined) {
            this.selected = this.#firstSelected(this.document);
            this.#tell("selection");
        }
        this.#tell("document");
        void this.recheck();
    }

    #tell(what: Told): void {
        this.dispatchEvent(new Event(what));
    }

    #firstSelected(document: GraphDocument): string {
        if (shaderOf(document, document.output) !== undefined) return document.output;
        return Object.keys(document.shaders)[0] ?? "";
    }
}

/** How a shader is titled: its name, and its class where the name doesn't tell it. */
export function kindOf(session: Session, name: string): string {
    const shader = shaderOf(session.document, name);
    return shader === undefined ? "" : tableName(shader);
}
