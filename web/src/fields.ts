// The fields of the selected shader, made from its table.

import { colorControl, colorsControl } from "./controls/color";
import { derivedControl, choiceControl, switchControl, textControl } from "./controls/plain";
import { fileControl } from "./controls/file";
import { keysOf, type Keys } from "./controls/keys";
import { numberControl, numbersControl } from "./controls/number";
import { slotControl } from "./controls/slot";
import type { Control } from "./controls/control";
import { h, icon } from "./dom";
import { headOf } from "./head";
import type { Field, FieldValue } from "./engine";
import { given, isKeyed, pointerTo, shaderOf, tableName, tokens, valueAt, type Shader } from "./graph";
import type { Session } from "./session";

const kKeyHint =
    "A diamond is a key: the value at the frame that is shown. It is filled at a key, and green where the field has keys.";

/** Fields that stand together: the elements of an array, the members of a record, or one field alone. */
interface Group {
    title: string;
    key: string;
    fields: Field[];
    kind: "plain" | "array" | "record" | "grid" | "slots";
}

const kLongArray = 3;
const kEntries = "input, select"; // what takes a value
/** What nobody finds without being told; fingers know neither. */
const kHint = matchMedia("(pointer: coarse)").matches
    ? ""
    : "Shift moves a slider finely. A double click takes the default.";

function grouped(fields: readonly Field[]): Group[] {
    const groups: Group[] = [];
    for (const field of fields) {
        const way = tokens(field.name);
        const isRecord = way.length === 3 && typeof way[2] === "string";
        const isGrid = way.length === 3 && typeof way[2] === "number";
        const key = isRecord ? `${way[0]}[${way[1]}]` : way.length > 1 ? String(way[0]) : field.name;
        const last = groups.at(-1);
        if (last?.key === key && way.length > 1) {
            last.fields.push(field);
            continue;
        }
        const kind = isRecord
            ? "record"
            : isGrid
              ? "grid"
              : way.length > 1
                ? field.type === "shader"
                    ? "slots"
                    : "array"
                : "plain";
        groups.push({ title: titleOf(field, kind), key, fields: [field], kind });
    }
    return groups;
}

function titleOf(field: Field, kind: Group["kind"]): string {
    if (kind === "record") return field.label.split(":")[0]!;
    if (kind === "grid") return "Crossings";
    return field.label.replace(/ \d+\b.*$/, "");
}

function short(text: FieldValue): string {
    if (typeof text === "number") return String(Number(text.toPrecision(6)));
    if (typeof text === "boolean") return text ? "on" : "off";
    return JSON.stringify(text);
}

interface Entry {
    field: Field;
    control: Control;
    keys: Keys | undefined;
    row: HTMLElement;
    reset: HTMLButtonElement;
    fault: HTMLElement;
}

export class Fields {
    readonly element = h("section", { class: "fields", "aria-label": "Fields" });
    readonly #session: Session;
    readonly #info = h("p", { class: "info", id: "info" });
    #entries: Entry[] = [];
    #form = "";

    constructor(session: Session) {
        this.#session = session;
        session.addEventListener("selection", () => this.#draw());
        session.addEventListener("document", () => this.#draw());
        session.addEventListener("frame", () => this.#refresh());
        session.addEventListener("frames", () => this.#refresh());
        session.addEventListener("check", () => this.#refresh());
        for (const event of ["focusin", "pointerover"])
            this.element.addEventListener(event, (over) => this.#explain(over.target as Element));
        this.#draw();
    }

    get #shader(): Shader | undefined {
        return shaderOf(this.#session.document, this.#session.selected);
    }

    #draw(): void {
        const shader = this.#shader;
        const table = shader && this.#session.tableOf(tableName(shader));
        const slots = table?.fields
            .filter((field) => field.type === "shader")
            .map(
                (field) =>
                    shader && given(shader, field.name) !== undefined && given(shader, field.name) !== null,
            );
        const isOutput = this.#session.selected === this.#session.document.output;
        const form = JSON.stringify([this.#session.selected, table?.name, slots, isOutput]);
        if (form === this.#form) {
            this.#refresh();
            return;
        }
        const isOther = JSON.parse(this.#form || "[]")[0] !== this.#session.selected;
        const focused = document.activeElement as HTMLElement | null;
        const focusedField = (focused?.closest("[data-field]") as HTMLElement | null)?.dataset["field"];
        const kept = new Set(
            [...this.element.querySelectorAll<HTMLDetailsElement>("details[data-group][open]")].map(
                (group) => group.dataset["group"]!,
            ),
        );
        this.#form = form;
        this.#entries = [];
        const head = headOf(this.#session, this.#session.selected, table);
        if (shader === undefined || table === undefined) {
            this.element.replaceChildren(head);
            return;
        }
        const groups = grouped(table.fields);
        const set = groups.filter((group) => group.fields.some((field) => !field.derived));
        const derived = table.fields.filter((field) => field.derived);
        // What is plugged in comes first: it is what an artist looks for.
        const isPlug = (group: Group) => group.fields[0]!.type === "shader";
        const plugs = set.filter(isPlug).map((group) => this.#group(group, shader, kept));
        const rest = set.filter((group) => !isPlug(group)).map((group) => this.#group(group, shader, kept));
        const told =
            derived.length > 0 &&
            h(
                "details",
                { class: "group", "data-group": "derived" },
                h("summary", {}, "What the shader derives"),
                ...derived.map((field) => this.#row(field, field.label)),
            );
        this.element.replaceChildren(
            head,
            ...(plugs.length > 0 ? [h("div", { class: "plugs" }, ...plugs)] : []),
            ...rest,
            ...(told ? [told] : []),
            this.#info,
        );
        this.#info.textContent = kHint;
        if (isOther) this.element.scrollTop = 0;
        this.#refresh();
        if (focused?.matches(".shader-name") && !focused.isConnected)
            this.element.querySelector<HTMLElement>(".shader-name")?.focus({ preventScroll: true });
        if (focusedField !== undefined) {
            const row = this.#entries.find(({ field }) => field.name === focusedField)?.row;
            const label = focused!.getAttribute("aria-label");
            const shown = controlsIn(row).filter((each) => each.offsetParent !== null);
            const same = shown.find((each) => each.getAttribute("aria-label") === label);
            (same ?? shown[0])?.focus({ preventScroll: true });
        }
    }

    #group(group: Group, shader: Shader, kept: ReadonlySet<string>): HTMLElement {
        if (group.kind === "plain") return this.#row(group.fields[0]!, group.fields[0]!.label);
        if (group.kind === "grid") return this.#grid(group, shader);
        const isGiven = (field: Field) =>
            given(shader, field.name) !== undefined && given(shader, field.name) !== null;
        if (group.kind === "slots") {
            const last = group.fields.findLastIndex(isGiven);
            const near = group.fields.slice(0, last + 2);
            const far = group.fields.slice(last + 2);
            const rest =
                far.length > 0 &&
                h(
                    "details",
                    { "data-group": group.key, open: kept.has(group.key) },
                    h("summary", {}, `${far.length} more empty`),
                    ...far.map((field) => this.#row(field, field.label)),
                );
            return h("div", { class: "slots" }, ...near.map((field) => this.#row(field, field.label)), rest);
        }
        const label = (field: Field) =>
            group.kind === "record" ? capital(field.label.split(": ")[1] ?? field.label) : field.label;
        const rows = group.fields.map((field) => this.#row(field, label(field)));
        if (group.fields.length <= kLongArray && group.kind === "array") return h("div", {}, ...rows);
        const open = kept.has(group.key) || group.fields.some(isGiven);
        return h(
            "details",
            { class: "group", "data-group": group.key, open },
            h("summary", {}, group.title),
            ...rows,
        );
    }

    /** Switches in rows and columns, as the pattern of a cloth: the first row at the bottom, as V has it. */
    #grid(group: Group, shader: Shader): HTMLElement {
        const columns = Math.max(...group.fields.map((field) => Number(tokens(field.name)[2]))) + 1;
        const cells = group.fields.map((field) => {
            const control = switchControl(field.label, (value) =>
                this.#session.set(this.#session.selected, field, value),
            );
            control.element.removeAttribute("role");
            const cell = h("span", { class: "cell", "data-field": field.name }, control.element);
            this.#entries.push({
                field,
                control,
                keys: undefined,
                row: cell,
                reset: h("button"),
                fault: h("span"),
            });
            return cell;
        });
        const rows = [];
        for (let i = 0; i < cells.length; i += columns) rows.unshift(...cells.slice(i, i + columns));
        const grid = h(
            "div",
            { class: "grid", role: "group", "aria-label": group.title, style: `--columns: ${columns}` },
            ...rows,
        );
        const first = group.fields[0]!;
        return h(
            "div",
            { class: "row" },
            h("div", { class: "label" }, group.title),
            grid,
            h("p", { class: "grid-note" }, `Filled: ${lower(first.help)}${this.#condition(first, shader)}`),
        );
    }

    /** Where a field counts, such as " Only with Cloth: Free."; nothing for one that always does. */
    #condition({ onlyWith }: Field, shader: Shader): string {
        if (onlyWith === undefined) return "";
        const other = this.#tableField(shader, onlyWith.field);
        const choice = other?.choices?.find(({ value }) => value === onlyWith.value)?.label;
        return ` Only with ${other?.label ?? onlyWith.field}: ${choice ?? onlyWith.value}.`;
    }

    #tableField(shader: Shader, name: string): Field | undefined {
        return this.#session.tableOf(tableName(shader))?.fields.find((each) => each.name === name);
    }

    #row(field: Field, label: string): HTMLElement {
        const session = this.#session;
        const name = session.selected;
        const control = field.derived ? derivedControl() : this.#control(field, label, name);
        const chosen = field.choices?.find((choice) => choice.value === field.default)?.label;
        const standard = field.default === undefined ? "" : `Back to ${chosen ?? short(field.default)}`;
        const reset = h("button", {
            type: "button",
            class: "reset",
            title: standard,
            "aria-label": `${label}: ${standard.toLowerCase()}`,
            hidden: true,
            onclick: () => {
                session.set(name, field, undefined);
                controlsIn(control.element)[0]?.focus({ preventScroll: true }); // the dot is gone
            },
        });
        const keys =
            field.derived || field.type === "shader" ? undefined : keysOf(session, name, field, label);
        const fault = h("p", { class: "fault", hidden: true });
        const caption = h(
            "div",
            {
                class: "label",
                ondblclick: () =>
                    !field.derived && field.type !== "shader" && session.set(name, field, undefined),
            },
            h("span", {}, label),
            field.unit ? h("span", { class: "unit" }, field.unit) : null,
            keys?.button,
            reset,
        );
        const row = h(
            "div",
            { class: `row ${field.type}`, "data-field": field.name },
            caption,
            control.element,
            keys?.line,
            fault,
        );
        for (const entry of controlsIn(control.element, kEntries))
            entry.setAttribute("aria-description", field.help);
        this.#entries.push({ field, control, keys, row, reset, fault });
        return row;
    }

    #control(field: Field, label: string, name: string): Control {
        const changed = (value: FieldValue | undefined) => this.#session.set(name, field, value);
        if (field.choices !== undefined) return choiceControl(field, label, changed);
        switch (field.type) {
            case "float":
            case "int32":
                return numberControl(field, label, changed);
            case "bool":
                return switchControl(label, changed);
            case "vector2":
                return numbersControl(field, label, ["1", "2"], changed);
            case "vector3":
                return numbersControl(field, label, ["X", "Y", "Z"], changed);
            case "rgb":
            case "rgba":
                return colorControl(field, label, changed);
            case "colors":
                return colorsControl(field, label, changed);
            case "shader":
                return slotControl(this.#session, name, field, label);
            case "file":
                return fileControl(this.#session, name, field, label);
            default:
                return textControl(label, changed, /Name$/.test(field.name) ? this.#elementNames() : []);
        }
    }

    /** The elements of the scene, for fields that name one. */
    #elementNames(): string[] {
        const names: string[] = [];
        const walk = (elements: unknown) => {
            if (!Array.isArray(elements)) return;
            for (const element of elements as { name?: unknown; children?: unknown }[]) {
                if (typeof element?.name === "string") names.push(element.name);
                walk(element?.children);
            }
        };
        walk((this.#session.document.scene as { elements?: unknown } | undefined)?.elements);
        return names;
    }

    #refresh(): void {
        const shader = this.#shader;
        if (shader === undefined) return;
        const { frame, problem, check } = this.#session;
        const doubts = check?.ok ? check.doubts : [];
        for (const { field, control, keys, row, reset, fault } of this.#entries) {
            const stands = given(shader, field.name);
            const value = valueAt(shader, field, frame);
            control.show(value);
            keys?.show();
            const isStandard =
                stands === undefined || JSON.stringify(value) === JSON.stringify(field.default ?? null);
            reset.hidden = isStandard || field.type === "shader" || field.derived === true;
            row.classList.toggle("changed", !reset.hidden);
            row.classList.toggle("keyed", isKeyed(stands));
            if (field.onlyWith !== undefined) {
                const other = this.#tableField(shader, field.onlyWith.field);
                row.classList.toggle(
                    "idle",
                    other !== undefined && valueAt(shader, other, frame) !== field.onlyWith.value,
                );
            }
            const at = pointerTo(this.#session.selected, shader, field.name);
            const isHere = (each: { pointer: string }) =>
                each.pointer === at || each.pointer.startsWith(at + "/");
            const wrong = problem !== undefined && isHere(problem) ? problem : undefined;
            const told = wrong ?? doubts.find(isHere);
            fault.hidden = told === undefined;
            fault.textContent = told?.message ?? "";
            row.classList.toggle("wrong", wrong !== undefined);
            for (const entry of controlsIn(control.element, kEntries))
                entry.setAttribute("aria-invalid", String(wrong !== undefined));
        }
    }

    #explain(target: Element): void {
        if (target.closest(".key")) {
            this.#info.textContent = kKeyHint;
            return;
        }
        const address = (target.closest("[data-field]") as HTMLElement | null)?.dataset["field"];
        const field = this.#entries.find((entry) => entry.field.name === address)?.field;
        if (field === undefined) {
            this.#info.textContent = kHint;
            return;
        }
        const standard =
            field.default === undefined || field.default === null || field.default === ""
                ? ""
                : ` Default ${short(field.default)}${field.unit ? " " + field.unit : ""}.`;
        this.#info.replaceChildren(h("code", {}, field.name), ` ${field.help}${standard}`);
    }
}

/** What can be worked with in an element, itself included. */
function controlsIn(element: HTMLElement | undefined, kinds = "select, input, button"): HTMLElement[] {
    const within = [...(element?.querySelectorAll<HTMLElement>(kinds) ?? [])];
    return element?.matches(kinds) ? [element, ...within] : within;
}

function capital(text: string): string {
    return text.charAt(0).toUpperCase() + text.slice(1);
}

function lower(text: string): string {
    return text.charAt(0).toLowerCase() + text.slice(1);
}

/** A round button with a drawing, and its name for those who don't see it. */
export function iconButton(
    name: Parameters<typeof icon>[0],
    label: string,
    onclick: () => void,
): HTMLButtonElement {
    return h(
        "button",
        { type: "button", class: "icon-button", title: label, "aria-label": label, onclick },
        icon(name),
    );
}
