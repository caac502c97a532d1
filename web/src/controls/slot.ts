// What is plugged into a slot: any source or class, or another shader of the graph.

import { h, icon } from "../dom";
import type { Field, FieldValue, ShaderTable } from "../engine";
import { below, given, isKeyed, tableName, shaderOf, valueAt } from "../graph";
import type { Session } from "../session";
import { colorControl } from "./color";
import type { Control } from "./control";
import { fileControl } from "./file";
import { numberControl } from "./number";

/** Colours, numbers and pictures are chosen right at the slot. */
const kInline: { [source: string]: string } = { color: "color", value: "value", picture: "file" };

function options(session: Session, name: string, plugged: string | null): HTMLElement[] {
    const document = session.document;
    const names = Object.keys(document.shaders).filter(
        (other) => other === plugged || !below(document, other, session.tableOf).has(name),
    );
    const tables = (tables: readonly ShaderTable[]) =>
        tables.map((table) => h("option", { value: "+" + table.name, title: table.purpose }, table.name));
    return [
        h("option", { value: "" }, "Empty"),
        h(
            "optgroup",
            { label: "In this graph" },
            ...names.map((other) => h("option", { value: "=" + other }, other)),
        ),
        h("optgroup", { label: "A new source" }, ...tables(session.engine.sources)),
        h("optgroup", { label: "A new shader" }, ...tables(session.engine.classes)),
    ];
}

export function slotControl(session: Session, name: string, field: Field, label: string): Control {
    const menu = h("select", { "aria-label": `${label}: what is plugged in` });
    const open = h("button", { class: "quiet", type: "button" }, icon("open"));
    const inline = h("div", { class: "inline" });
    const well = h("span", { class: "slot-well" });
    const element = h(
        "div",
        { class: "slot", "data-slot": field.name },
        h("div", { class: "slot-row" }, menu, well, open),
        inline,
    );
    let plugged: string | null = null;
    let inner: { name: string; control: Control; field: Field } | undefined;

    // A graph may be large: the menu gets its options when it is about to be used.
    const fill = () => {
        menu.replaceChildren(...options(session, name, plugged));
        menu.value = plugged === null ? "" : "=" + plugged;
    };
    menu.addEventListener("pointerdown", fill);
    menu.addEventListener("focus", fill);
    menu.addEventListener("change", () => {
        const chosen = menu.value;
        if (chosen === "") session.set(name, field, null);
        else if (chosen.startsWith("=")) session.set(name, field, chosen.slice(1));
        else session.plugNew(name, field, chosen.slice(1));
    });
    open.addEventListener("click", () => plugged !== null && session.select(plugged));

    const showInline = (next: string | null) => {
        const shader = next === null ? undefined : shaderOf(session.document, next);
        const table = shader && session.tableOf(tableName(shader));
        const own =
            table?.kind === "source"
                ? table.fields.find((each) => each.name === kInline[table.name])
                : undefined;
        if (next === null || shader === undefined || own === undefined) {
            inner = undefined;
            inline.replaceChildren();
            well.replaceChildren();
            return;
        }
        if (inner?.name !== next || inner.field !== own) {
            const what = `${label}: ${own.label.toLowerCase()}`;
            const changed = (value: FieldValue | undefined) => session.set(next, own, value);
            const isColor = own.type === "rgb" || own.type === "rgba";
            const control = isColor
                ? colorControl(own, what, changed, true)
                : own.type === "file"
                  ? fileControl(session, next, own, what)
                  : numberControl(own, what, changed);
            inner = { name: next, field: own, control };
            (isColor ? well : inline).replaceChildren(control.element);
            (isColor ? inline : well).replaceChildren();
        }
        inner.control.show(valueAt(shader, own, session.frame));
    };
    return {
        element,
        show: (value) => {
            const shader = shaderOf(session.document, name);
            const stands = shader && given(shader, field.name);
            plugged = typeof value === "string" && value !== "" ? value : null;
            if (document.activeElement === menu) fill();
            else {
                const text = isKeyed(stands) ? `${plugged} (keyed)` : (plugged ?? "Empty");
                menu.replaceChildren(h("option", {}, text));
            }
            menu.classList.toggle("empty", plugged === null);
            open.hidden = plugged === null;
            open.setAttribute("aria-label", `Go to ${plugged ?? ""}`);
            showInline(plugged);
        },
    };
}
