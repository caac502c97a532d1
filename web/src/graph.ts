// A graph as the page edits it. A document is never changed: each edit makes a new one.

import type { Field, FieldValue, GraphDocument, ShaderTable } from "./engine";

export type Shader = GraphDocument["shaders"][string];
export type TableOf = (name: string) => ShaderTable | undefined;

export type Between = "linear" | "smooth" | "step";

/** Values at frames; between them as `between` says. */
export interface Keyed {
    keys: [number, FieldValue][];
    between?: Between;
}

type Token = string | number;

/** `fBands[2].fCenter` as ["fBands", 2, "fCenter"]. */
export function tokens(address: string): Token[] {
    return [...address.matchAll(/([^.[\]]+)|\[(\d+)\]/g)].map((match) => match[1] ?? Number(match[2]));
}

export function isKeyed(value: unknown): value is Keyed {
    return typeof value === "object" && value !== null && Array.isArray((value as Partial<Keyed>).keys);
}

/** Whether any value of a shader, or in one, changes from frame to frame. */
export function hasKeys(value: unknown): boolean {
    return (
        isKeyed(value) || (typeof value === "object" && value !== null && Object.values(value).some(hasKeys))
    );
}

function startsWith(long: readonly Token[], short: readonly Token[]): boolean {
    return short.length <= long.length && short.every((token, i) => token === long[i]);
}

/** Where a shader has a field: the outer key and the way below it. What comes last counts, as the host reads it. */
function place(shader: Shader, address: string): { key: string; below: Token[] } | undefined {
    const wanted = tokens(address);
    let found: { key: string; below: Token[] } | undefined;
    for (const key of Object.keys(shader)) {
        if (key === "class" || key === "source") continue;
        const own = tokens(key);
        if (!startsWith(wanted, own)) continue;
        const below = wanted.slice(own.length);
        if (valueBelow(shader[key], below) !== undefined) found = { key, below };
    }
    return found;
}

function valueBelow(value: unknown, below: readonly Token[]): unknown {
    for (const token of below) {
        if (typeof value !== "object" || value === null || !Object.hasOwn(value, token)) return undefined;
        value = (value as Record<Token, unknown>)[token];
    }
    return value;
}

/** What the document gives a field, as it stands there; undefined where it leaves the default. */
export function given(shader: Shader, address: string): unknown {
    const found = place(shader, address);
    return found && valueBelow(shader[found.key], found.below);
}

/** The JSON pointer to a field, or to where it would be. */
export function pointerTo(name: string, shader: Shader, address: string): string {
    const found = place(shader, address);
    return pointer("shaders", name, ...(found ? [found.key, ...found.below] : [address]));
}

export function pointer(...parts: Token[]): string {
    return parts.map((part) => "/" + String(part).replaceAll("~", "~0").replaceAll("/", "~1")).join("");
}

/** The name of the shader that a JSON pointer leads to or into. */
export function shaderAt(pointer: string | undefined): string | undefined {
    const token = /^\/shaders\/([^/]*)/.exec(pointer ?? "")?.[1];
    return token?.replaceAll("~1", "/").replaceAll("~0", "~");
}

function copy(document: GraphDocument): GraphDocument {
    return structuredClone(document);
}

/** Own members only, whatever their name. */
function put(target: object, key: Token, value: unknown): void {
    Object.defineProperty(target, key, { value, writable: true, enumerable: true, configurable: true });
}

/** The document with a field set; `undefined` takes it back to its default. */
export function withField(
    document: GraphDocument,
    name: string,
    field: Field,
    value: FieldValue | Keyed | undefined,
): GraphDocument {
    const changed = copy(document);
    const shader = shaderOf(changed, name);
    if (shader === undefined) return document;
    const found = place(shader, field.name);
    if (found === undefined) {
        if (value !== undefined) put(shader, field.name, value);
    } else if (found.below.length === 0) {
        if (value === undefined) delete shader[found.key];
        else put(shader, found.key, value);
    } else {
        const last = found.below.at(-1)!;
        const holder = valueBelow(shader[found.key], found.below.slice(0, -1)) as object;
        put(holder, last, value === undefined ? (field.default ?? null) : value);
    }
    return changed;
}

export function shaderOf(document: GraphDocument, name: string): Shader | undefined {
    return Object.hasOwn(document.shaders, name) ? document.shaders[name] : undefined;
}

export function tableName(shader: Shader): string {
    return String(shader.class ?? shader.source ?? "");
}

/** A name like `cloth` or `cloth 2` that no shader has. */
export function freeName(document: GraphDocument, wish: string): string {
    const start = wish.toLowerCase().replaceAll("_", " ");
    for (let number = 1; ; ++number) {
        const name = number === 1 ? start : `${start} ${number}`;
        if (!Object.hasOwn(document.shaders, name)) return name;
    }
}

/** The document with one more shader, plugged into a slot. */
export function withNewShader(
    document: GraphDocument,
    name: string,
    field: Field,
    table: ShaderTable,
): { document: GraphDocument; added: string } {
    const added = freeName(document, table.name);
    const changed = copy(document);
    put(changed.shaders, added, { [table.kind]: table.name });
    return { document: withField(changed, name, field, added), added };
}

export function withoutShader(document: GraphDocument, name: string, tableOf: TableOf): GraphDocument {
    let changed = document;
    for (const [other, shader] of Object.entries(document.shaders))
        for (const slot of slots(shader, tableOf))
            if (slot.shader === name) changed = withField(changed, other, slot.field, null);
    changed = copy(changed);
    delete changed.shaders[name];
    return changed;
}

/** The document with a shader under another name, wherever it is named. */
export function renamed(document: GraphDocument, from: string, to: string, tableOf: TableOf): GraphDocument {
    const other = (name: FieldValue) => (name === from ? to : name);
    let changed = document;
    for (const [name, shader] of Object.entries(document.shaders))
        for (const { field } of slots(shader, tableOf)) {
            const value = given(shader, field.name) as FieldValue | Keyed | undefined;
            if (isKeyed(value)) {
                const keys = value.keys.map(([frame, key]): [number, FieldValue] => [frame, other(key)]);
                changed = withField(changed, name, field, { ...value, keys });
            } else if (value === from) changed = withField(changed, name, field, to);
        }
    changed = copy(changed);
    const shaders = {};
    for (const [name, shader] of Object.entries(changed.shaders)) put(shaders, other(name) as string, shader);
    const scene = changed.scene === undefined ? {} : { scene: sceneWith(changed.scene, other) };
    return { ...changed, ...scene, shaders, output: other(document.output) as string };
}

/** A part of a scene with other names of shaders: elements have a `shader`, nodes and materials are names for names. */
function sceneWith<Value>(value: Value, other: (name: FieldValue) => FieldValue): Value {
    if (Array.isArray(value)) return value.map((item) => sceneWith(item, other)) as Value;
    if (typeof value !== "object" || value === null) return value;
    const changed = {};
    for (const [key, own] of Object.entries(value)) {
        const isNames = (key === "nodes" || key === "materials") && typeof own === "object" && own !== null;
        if (key === "shader" && typeof own === "string") put(changed, key, other(own));
        else if (isNames) put(changed, key, namesWith(own as object, other));
        else put(changed, key, sceneWith(own, other));
    }
    return changed as Value;
}

function namesWith(names: object, other: (name: FieldValue) => FieldValue): object {
    const changed = {};
    for (const [key, own] of Object.entries(names))
        put(changed, key, typeof own === "string" ? other(own) : sceneWith(own, other));
    return changed;
}

/** The document with a shader of another class or source, with the fields that it has too. */
export function turned(document: GraphDocument, name: string, table: ShaderTable): GraphDocument {
    const changed = copy(document);
    const known = new Set(table.fields.map((field) => tokens(field.name)[0]));
    const shader = {};
    put(shader, table.kind, table.name);
    for (const [key, value] of Object.entries(shaderOf(document, name) ?? {}))
        if (known.has(tokens(key)[0])) put(shader, key, value);
    put(changed.shaders, name, shader);
    return changed;
}

/** The slots of a shader in the order of its table, with what is plugged in. */
export function slots(shader: Shader, tableOf: TableOf): { field: Field; shader: string | null }[] {
    const table = tableOf(tableName(shader));
    return (table?.fields ?? [])
        .filter((field) => field.type === "shader")
        .map((field) => {
            const value = given(shader, field.name);
            const name = isKeyed(value) ? value.keys[0]?.[1] : value;
            return { field, shader: typeof name === "string" && name !== "" ? name : null };
        });
}

/** All shaders that hang below one, itself included. */
export function below(document: GraphDocument, name: string, tableOf: TableOf): Set<string> {
    const found = new Set<string>();
    const open = [name];
    for (let next = open.pop(); next !== undefined; next = open.pop()) {
        const shader = shaderOf(document, next);
        if (shader === undefined || found.has(next)) continue;
        found.add(next);
        for (const slot of slots(shader, tableOf)) if (slot.shader !== null) open.push(slot.shader);
    }
    return found;
}

/** The value of a field at a frame, in the form of its type: the value of a choice, never its label. */
export function valueAt(shader: Shader, field: Field, frame: number): FieldValue {
    const stands = given(shader, field.name);
    const value = isKeyed(stands) ? interpolated(stands, field, frame) : (stands as FieldValue | undefined);
    if (value === undefined) return field.default ?? null;
    return field.choices?.find((choice) => choice.label === value)?.value ?? value;
}

/** Whether a field has nothing between two values. */
export function isStepped(field: Field): boolean {
    return !["float", "vector2", "vector3", "rgb", "rgba", "colors"].includes(field.type);
}

function interpolated(curve: Keyed, field: Field, frame: number): FieldValue {
    const next = curve.keys.findIndex(([at]) => frame < at);
    if (next === 0 || curve.keys.length === 0) return curve.keys[0]?.[1] ?? null;
    const last = curve.keys[next < 0 ? curve.keys.length - 1 : next - 1]!;
    const after = curve.keys[next];
    if (after === undefined || curve.between === "step" || isStepped(field)) return last[1];
    const share = (frame - last[0]) / (after[0] - last[0]);
    return mixed(last[1], after[1], curve.between === "smooth" ? share * share * (3 - 2 * share) : share);
}

function mixed(left: FieldValue, right: FieldValue, share: number): FieldValue {
    if (typeof left === "number" && typeof right === "number") return left + (right - left) * share;
    if (Array.isArray(left) && Array.isArray(right))
        return left.map((item, i) => mixed(item, right[i], share)) as readonly number[];
    return left;
}

/** The keys with one more, or another, at a frame. */
export function withKey(curve: Keyed, frame: number, value: FieldValue): Keyed {
    const keys = curve.keys.filter(([at]) => at !== frame);
    keys.push([frame, value]);
    return { ...curve, keys: keys.sort((left, right) => left[0] - right[0]) };
}

export function withoutKey(curve: Keyed, frame: number): Keyed {
    return { ...curve, keys: curve.keys.filter(([at]) => at !== frame) };
}

/** The files that a graph names: pictures of its sources, models of its scene. */
export function filesOf(document: GraphDocument): { pictures: string[]; models: string[] } {
    const pictures = new Set<string>();
    const models = new Set<string>();
    const lookIn = (value: unknown, found: Set<string>) => {
        if (typeof value === "string" && value !== "") found.add(value);
        else if (isKeyed(value)) for (const [, name] of value.keys) lookIn(name, found);
    };
    for (const shader of Object.values(document.shaders))
        if (shader.source === "picture") lookIn(shader["file"], pictures);
    const scene = document.scene as { file?: unknown; elements?: unknown } | undefined;
    const file = scene?.file;
    lookIn(typeof file === "object" && file !== null ? (file as { path?: unknown }).path : file, models);
    const walk = (elements: unknown) => {
        if (!Array.isArray(elements)) return;
        for (const element of elements as {
            shape?: { kind?: unknown; file?: unknown };
            children?: unknown;
        }[]) {
            if (element?.shape?.kind === "model") lookIn(element.shape.file, models);
            walk(element?.children);
        }
    };
    walk(scene?.elements);
    return { pictures: [...pictures], models: [...models] };
}

/** Whether a value has the rough form of a graph, so that the page can show it; the engine judges the rest. */
export function isGraph(value: unknown): value is GraphDocument {
    if (typeof value !== "object" || value === null) return false;
    const { shaders, output } = value as Partial<GraphDocument>;
    return (
        typeof output === "string" &&
        typeof shaders === "object" &&
        shaders !== null &&
        Object.values(shaders).every(
            (shader) => typeof shader === "object" && shader !== null && !Array.isArray(shader),
        )
    );
}
