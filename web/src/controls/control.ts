// What all controls of a field have in common.

import type { Field, FieldValue } from "../engine";

/** Called with each new value; `undefined` takes the field back to its default. */
export type Changed = (value: FieldValue | undefined) => void;

export interface Control {
    readonly element: HTMLElement;
    /** Shows a value that came from elsewhere. Leaves alone what is just being typed. */
    show(value: FieldValue): void;
}

/** As a reader writes it: at most seven digits, no needless zeros. */
export function numberText(value: number): string {
    return String(Number(value.toPrecision(7)));
}

function nice(value: number): number {
    const power = 10 ** Math.floor(Math.log10(value));
    const digit = value / power;
    return (digit <= 1 ? 1 : digit <= 2 ? 2 : digit <= 5 ? 5 : 10) * power;
}

/** Where a slider begins and ends, and its step. Fields without ends get those that are worth trying. */
export function sliderRange(field: Field, value: number): { minimum: number; maximum: number; step: number } {
    const standard =
        typeof field.default === "number"
            ? field.default
            : Array.isArray(field.default)
              ? Number(field.default[0])
              : 0;
    const whole = field.type === "int32";
    let minimum = field.minimum;
    let maximum = field.maximum;
    if (field.unit === "%") {
        minimum ??= standard > 0 ? 0 : -100;
        maximum ??= 100;
    } else if (field.unit === "degrees") {
        minimum ??= -180;
        maximum ??= 180;
    } else if (field.unit === "radians") {
        minimum ??= -3.2;
        maximum ??= 3.2;
    } else if (field.unit === "scene units") {
        minimum ??= standard > 0 ? 0 : -5;
        maximum ??= 5;
    } else {
        const reach = nice(Math.max(whole ? 20 : 1, Math.abs(standard) * (whole ? 4 : 2)));
        minimum ??= standard < 0 ? -reach : 0;
        maximum ??= reach;
    }
    if (maximum - minimum > 2000) {
        // Ends that only guard: a slider over all of them would be useless.
        minimum = Math.max(minimum, -10);
        maximum = Math.min(maximum, 10);
    }
    if (value > maximum) maximum = nice(value * 1.2);
    if (value < minimum) minimum = -nice(-value * 1.2);
    const step = whole ? 1 : nice((maximum - minimum) / 400);
    return { minimum, maximum, step };
}
