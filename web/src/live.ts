// A live picture in the guide: in the place of a gallery picture that a reference page shows.

import { kTopics, type Example } from "./catalog";
import { numberControl } from "./controls/number";
import { choiceControl, switchControl } from "./controls/plain";
import { colorControl } from "./controls/color";
import type { Control } from "./controls/control";
import { h, kForPixels } from "./dom";
import type { Engine, Field, FieldValue, GraphDocument, Picture, Request } from "./engine";
import { given, shaderOf, tableName, valueAt, withField } from "./graph";
import { toHash } from "./link";
import { engine, giveFiles, loadExample } from "./load";
import { withScene } from "./models";
import { Shading } from "./shading";

const kSize = 384;
const kMostControls = 6;

function requestFor(example: Example, document: GraphDocument): Request {
    const graph = withScene(document);
    const base = { graph, width: kSize, height: kSize };
    if (example.render)
        return {
            ...base,
            surface: { kind: "render", ...(example.camera ? { camera: example.camera } : {}) },
        };
    const over = example.over && { over: { shaders: { under: { source: example.over } }, output: "under" } };
    return { ...base, channel: example.channel, ...(over || {}) };
}

/** The fields that are worth a control beside the picture: those that the example sets, then others of the table. */
function chosen(fields: readonly Field[], document: GraphDocument, name: string): Field[] {
    const shader = shaderOf(document, name)!;
    const fit = fields.filter(
        (field) =>
            !field.derived &&
            ["float", "int32", "bool", "code", "rgb", "rgba"].includes(field.type) &&
            !/\]\[/.test(field.name),
    );
    const set = fit.filter((field) => given(shader, field.name) !== undefined);
    const slides = (field: Field) => (field.type === "float" || field.type === "int32" ? 0 : 1);
    const order = [
        ...set.sort((left, right) => slides(left) - slides(right)),
        ...fit.filter((field) => !set.includes(field) && slides(field) === 0),
    ];
    return order.slice(0, kMostControls);
}

async function enliven(image: HTMLImageElement, example: Example, className: string): Promise<void> {
    const ready: Engine = await engine();
    let document = await loadExample(example);
    await giveFiles(ready, document);
    const name = Object.keys(document.shaders).find(
        (each) => tableName(shaderOf(document, each)!) === className,
    );
    if (name === undefined) return;
    const canvas = h("canvas", {
        width: kSize,
        height: kSize,
        role: "img",
        "aria-label": image.alt,
        class: "live-picture",
    });
    const context = canvas.getContext("2d", kForPixels)!;
    const state = h("p", { class: "live-state", role: "status" });
    const figure = image.closest<HTMLElement>(".live")!;
    const shading = new Shading(ready, {
        part: () => undefined,
        failed: (error) => (state.textContent = error instanceof Error ? error.message : String(error)),
        done: (picture) => {
            const { width, height, pixels } = picture as Picture<"rgba8">;
            context.putImageData(new ImageData(pixels, width, height), 0, 0);
            state.textContent = "";
            if (image.isConnected) image.replaceWith(canvas);
            figure.dataset["state"] = "live";
        },
    });
    const page = new URL("../index.html", new URL(".", import.meta.url));
    const link = h("a", { href: `${page}#example=${example.graph}` }, "Open in the page");
    const change = (field: Field, value: FieldValue | undefined) => {
        document = withField(document, name, field, value);
        for (const [each, control] of controls) control.show(valueAt(shaderOf(document, name)!, each, 1));
        shading.ask(() => requestFor(example, document));
        void toHash({
            graph: document,
            title: example.title,
            view: JSON.stringify({
                ground: example.render ? "scene" : "square",
                channel: example.channel,
                ...(example.over ? { over: example.over } : {}),
            }),
        }).then((hash) => hash !== undefined && (link.href = `${page}${hash}`));
    };
    const controls = new Map<Field, Control>();
    const rows = chosen(ready.table(className)!.fields, document, name).map((field) => {
        const changed = (value: FieldValue | undefined) => change(field, value);
        const control =
            field.choices !== undefined
                ? choiceControl(field, field.label, changed)
                : field.type === "bool"
                  ? switchControl(field.label, changed)
                  : field.type === "rgb" || field.type === "rgba"
                    ? colorControl(field, field.label, changed)
                    : numberControl(field, field.label, changed);
        controls.set(field, control);
        control.show(valueAt(shaderOf(document, name)!, field, 1));
        return h(
            "div",
            { class: "row", title: field.help },
            h(
                "div",
                { class: "label" },
                field.label,
                field.unit ? h("span", { class: "unit" }, field.unit) : null,
            ),
            control.element,
        );
    });
    figure.append(h("div", { class: "live-controls" }, ...rows), state, h("p", { class: "live-link" }, link));
    shading.ask(() => requestFor(example, document));
}

/** The picture at the head of a reference page comes to life when it is seen. */
export function start(): void {
    const className = document.querySelector("h1")?.textContent?.trim() ?? "";
    const image = document.querySelector<HTMLImageElement>('img[src*="gallery/"]');
    const picture = image?.getAttribute("src")?.split("/").at(-1);
    const examples = kTopics.flatMap((topic) => topic.examples);
    const example = examples.find((each) => each.picture === picture);
    if (image === null || example === undefined || !example.classes.includes(className)) return;
    const figure = h("figure", { class: "live" });
    const stood = image.parentElement!.tagName === "P" ? image.parentElement! : image;
    const text = h("div", { class: "live-text" });
    while (stood.nextSibling !== null) text.append(stood.nextSibling);
    stood.replaceWith(h("div", { class: "live-beside" }, figure, text));
    image.alt = example.shows;
    figure.append(image);
    document.body.classList.add("has-live");
    new IntersectionObserver((entries, observer) => {
        if (!entries.some((entry) => entry.isIntersecting)) return;
        observer.disconnect();
        enliven(image, example, className).catch((error: Error) =>
            figure.append(h("p", { class: "live-state" }, error.message)),
        );
    }).observe(figure);
}

start();
