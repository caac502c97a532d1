// A slider and the number itself. Shift makes the slider ten times finer; a double click takes the default.

import { h, tell } from "../dom";
import type { Field } from "../engine";
import { numberText, sliderRange, type Changed, type Control } from "./control";

export function numberControl(field: Field, label: string, changed: Changed, described?: string): Control {
    let value = typeof field.default === "number" ? field.default : 0;
    let range = sliderRange(field, value);
    const slider = h("input", { type: "range", "aria-label": label, "aria-describedby": described });
    const entry = h("input", {
        type: "text",
        inputmode: "decimal",
        class: "number",
        spellcheck: "false",
        autocomplete: "off",
        "aria-label": `${label}, number`,
    });
    const element = h("div", { class: "slider" }, slider, entry);

    const draw = () => {
        range = sliderRange(field, value);
        slider.min = String(range.minimum);
        slider.max = String(range.maximum);
        slider.step = "any";
        slider.value = String(value);
        const share = (value - range.minimum) / (range.maximum - range.minimum);
        slider.style.setProperty("--share", String(Math.min(1, Math.max(0, share))));
        slider.setAttribute("aria-valuetext", `${numberText(value)}${field.unit ? " " + field.unit : ""}`);
        if (document.activeElement !== entry) entry.value = numberText(value);
    };
    const bounded = (next: number) => {
        const most = field.type === "int32" ? 2 ** 31 - 1 : 3.4028234663852886e38; // of a float
        const low = field.loose ? -most : (field.minimum ?? -most);
        const high = field.loose ? most : (field.maximum ?? most);
        return Math.min(high, Math.max(low, field.type === "int32" ? Math.round(next) : next));
    };
    const kinds = () => {
        const { type, minimum, maximum, loose } = field;
        const numbers = type === "int32" ? "whole numbers" : "numbers";
        const isBound = minimum !== undefined && maximum !== undefined && loose !== true;
        return isBound ? `${numbers} from ${numberText(minimum)} to ${numberText(maximum)}` : numbers;
    };
    const take = (next: number) => {
        next = bounded(next);
        if (next === value) return;
        value = next;
        draw();
        changed(value);
    };
    const snapped = (next: number, step: number) => Number((Math.round(next / step) * step).toPrecision(12));

    // The browser's own slider knows no finer step while it moves, so the pointer is followed here.
    let grip: { x: number; value: number; fine: boolean } | undefined;
    slider.addEventListener("pointerdown", (event) => {
        if (event.button !== 0) return;
        event.preventDefault();
        slider.focus({ preventScroll: true });
        slider.setPointerCapture(event.pointerId);
        const box = slider.getBoundingClientRect();
        const share = (event.clientX - box.left - 8) / (box.width - 16);
        const start = range.minimum + Math.min(1, Math.max(0, share)) * (range.maximum - range.minimum);
        if (!event.shiftKey && event.pointerType === "mouse") take(snapped(start, range.step));
        grip = {
            x: event.clientX,
            value: event.shiftKey || event.pointerType !== "mouse" ? value : start,
            fine: event.shiftKey,
        };
    });
    slider.addEventListener("pointermove", (event) => {
        if (grip === undefined) return;
        if (event.shiftKey !== grip.fine) grip = { x: event.clientX, value, fine: event.shiftKey };
        const whole = (range.maximum - range.minimum) / (slider.getBoundingClientRect().width - 16);
        const next = grip.value + (event.clientX - grip.x) * whole * (grip.fine ? 0.1 : 1);
        const step = grip.fine && field.type !== "int32" ? range.step / 10 : range.step;
        take(Math.min(range.maximum, Math.max(range.minimum, snapped(next, step))));
    });
    const release = () => (grip = undefined);
    slider.addEventListener("pointerup", release);
    slider.addEventListener("pointercancel", release);
    slider.addEventListener("dblclick", () => {
        release();
        changed(undefined);
    });
    slider.addEventListener("input", () => take(snapped(Number(slider.value), range.step)));
    const keys: { [key: string]: number } = {
        ArrowRight: 1,
        ArrowUp: 1,
        ArrowLeft: -1,
        ArrowDown: -1,
        PageUp: 10,
        PageDown: -10,
    };
    const onKey = (event: KeyboardEvent) => {
        const steps = keys[event.key];
        if (event.key === "Home" && event.target === slider) take(range.minimum);
        else if (event.key === "End" && event.target === slider) take(range.maximum);
        else if (steps === undefined || (event.target === entry && !/Arrow(Up|Down)|Page/.test(event.key)))
            return;
        else {
            const whole =
                field.type === "int32" ? 1 : Math.max(range.step, (range.maximum - range.minimum) / 100);
            const step = event.shiftKey && field.type !== "int32" ? whole / 10 : whole;
            take(Number((value + steps * step).toPrecision(12)));
            entry.value = numberText(value);
        }
        event.preventDefault();
    };
    slider.addEventListener("keydown", onKey);
    entry.addEventListener("keydown", (event) => {
        if (event.key === "Enter") accept();
        else if (event.key === "Escape") entry.value = numberText(value);
        else onKey(event);
    });
    const accept = () => {
        const text = entry.value.trim().replace(",", ".");
        // A unit may follow, as in "3 tiles".
        const number = /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?(?=\s*[\p{L}%°]*$)/iu.exec(text)?.[0];
        if (number !== undefined) {
            take(Number(number));
            if (Math.fround(value) !== Math.fround(Number(number)))
                tell(`${label} takes ${kinds()}: it is ${numberText(value)} now.`);
        } else if (text !== "") tell(`“${entry.value.trim()}” is no number.`);
        entry.value = numberText(value);
    };
    entry.addEventListener("blur", accept);
    entry.addEventListener("focus", () => entry.select());
    draw();
    return {
        element,
        show: (next) => {
            if (typeof next !== "number") return;
            value = next;
            if (document.activeElement === entry && grip === undefined) entry.value = numberText(value);
            draw();
        },
    };
}

/** Some numbers in one field, a slider each. */
export function numbersControl(
    field: Field,
    label: string,
    names: readonly string[],
    changed: Changed,
): Control {
    let values = names.map((_, i) => (Array.isArray(field.default) ? Number(field.default[i]) : 0));
    const controls = names.map((name, i) => {
        const one: Field = {
            ...field,
            type: "float",
            ...(Array.isArray(field.default) ? { default: Number(field.default[i]) } : {}),
        };
        return numberControl(one, `${label}, ${name}`, (next) => {
            values = values.map((old, j) =>
                i === j ? (typeof next === "number" ? next : Number(one.default ?? 0)) : old,
            );
            changed(values);
        });
    });
    const element = h(
        "div",
        { class: "numbers" },
        ...controls.map((control, i) =>
            h(
                "div",
                { class: "component" },
                h("span", { "aria-hidden": "true" }, names[i]!),
                control.element,
            ),
        ),
    );
    return {
        element,
        show: (next) => {
            if (!Array.isArray(next)) return;
            values = names.map((_, i) => Number(next[i] ?? (i === 3 ? 1 : 0)));
            controls.forEach((control, i) => control.show(values[i]!));
        },
    };
}
