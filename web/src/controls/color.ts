// Colours: what the screen shows, as the web writes it, and the linear numbers that the graph holds.

import { h, icon } from "../dom";
import type { Field } from "../engine";
import type { Changed, Control } from "./control";
import { numbersControl } from "./number";

function encoded(linear: number): number {
    const light = Math.min(1, Math.max(0, linear));
    return light <= 0.0031308 ? light * 12.92 : 1.055 * light ** (1 / 2.4) - 0.055;
}

function linearOf(byte: number): number {
    const share = byte / 255;
    return share <= 0.04045 ? share / 12.92 : ((share + 0.055) / 1.055) ** 2.4;
}

/** `#rrggbb` of a colour in linear light; what is beyond the screen is cut. */
export function hexOf(color: readonly number[]): string {
    const digits = [0, 1, 2].map((i) =>
        Math.round(encoded(color[i] ?? 0) * 255)
            .toString(16)
            .padStart(2, "0"),
    );
    return "#" + digits.join("");
}

/** Linear light of `#rgb` or `#rrggbb`. */
export function colorOf(hex: string): [number, number, number] | undefined {
    let digits = /^\s*#?([0-9a-f]{6}|[0-9a-f]{3})\s*$/i.exec(hex)?.[1];
    if (digits === undefined) return undefined;
    if (digits.length === 3) digits = [...digits].map((digit) => digit + digit).join("");
    const channel = (at: number) => Number(linearOf(parseInt(digits.slice(at, at + 2), 16)).toPrecision(6));
    return [channel(0), channel(2), channel(4)];
}

/** @param isSmall  the well alone, for where there is little room */
export function colorControl(field: Field, label: string, changed: Changed, isSmall = false): Control {
    const count = field.type === "rgb" ? 3 : 4;
    let value: readonly number[] = count === 3 ? [0, 0, 0] : [0, 0, 0, 1];
    const well = h("input", { type: "color", "aria-label": label });
    const hex = h("input", {
        type: "text",
        class: "hex",
        spellcheck: "false",
        autocomplete: "off",
        "aria-label": `${label}, as #rrggbb`,
    });
    const one: Field = { ...field, minimum: 0, maximum: 1, loose: true };
    const numbers = numbersControl(one, label, ["red", "green", "blue", "alpha"].slice(0, count), (next) =>
        take(next as readonly number[]),
    );
    const more = h("details", { class: "linear" }, h("summary", {}, "Linear light"), numbers.element);
    const element = isSmall
        ? well
        : h("div", { class: "color" }, h("div", { class: "color-row" }, well, hex), more);
    const draw = () => {
        well.value = hexOf(value);
        if (document.activeElement !== hex) hex.value = hexOf(value);
        numbers.show(value);
    };
    const take = (next: readonly number[]) => {
        value = next;
        draw();
        changed(value);
    };
    const fromHex = (text: string) => {
        const color = colorOf(text);
        if (color !== undefined && text.trim() !== hexOf(value)) take([...color, ...value.slice(3)]);
    };
    well.addEventListener("input", () => fromHex(well.value));
    hex.addEventListener("change", () => fromHex(hex.value));
    hex.addEventListener("blur", () => (hex.value = hexOf(value)));
    well.addEventListener("dblclick", () => changed(undefined));
    return {
        element,
        show: (next) => {
            if (!Array.isArray(next)) return;
            value = [0, 1, 2, 3].slice(0, count).map((i) => Number(next[i] ?? (i === 3 ? 1 : 0)));
            draw();
        },
    };
}

/** The colours of a gradient, two or more. */
export function colorsControl(field: Field, label: string, changed: Changed): Control {
    let values: readonly (readonly number[])[] = [];
    let controls: Control[] = [];
    const list = h("div", { class: "colors" });
    const take = (next: readonly (readonly number[])[]) => {
        values = next;
        changed(values);
        build();
    };
    const build = () => {
        controls = values.map((_, i) => {
            const one: Field = { ...field, type: "rgba" };
            return colorControl(one, `${label} ${i + 1}`, (next) => {
                if (!Array.isArray(next)) return;
                values = values.map((old, j) => (i === j ? (next as readonly number[]) : old));
                changed(values);
            });
        });
        const rows = controls.map((control, i) => {
            control.show(values[i]!);
            const remove = h(
                "button",
                {
                    class: "quiet",
                    type: "button",
                    "aria-label": `Remove colour ${i + 1}`,
                    disabled: values.length <= 2,
                    onclick: () => take(values.filter((_, j) => j !== i)),
                },
                icon("close"),
            );
            return h("div", { class: "colors-row" }, control.element, remove);
        });
        const add = h(
            "button",
            {
                class: "quiet add",
                type: "button",
                onclick: () => take([...values, values.at(-1) ?? [1, 1, 1, 1]]),
            },
            icon("plus"),
            "Add a colour",
        );
        list.replaceChildren(...rows, add);
    };
    return {
        element: list,
        show: (next) => {
            if (!Array.isArray(next)) return;
            const colors = next as readonly (readonly number[])[];
            const same = colors.length === controls.length;
            values = colors;
            if (same) controls.forEach((control, i) => control.show(values[i]!));
            else build();
        },
    };
}
