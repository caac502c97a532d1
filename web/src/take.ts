// What can be taken along: pictures, the graph, and the command that makes the same.

import { h, icon, tell } from "./dom";
import type { Session } from "./session";
import type { Stage } from "./stage";
import { encodePng } from "./png";
import type { Format, Picture } from "./engine";

const kSizes = [512, 1024, 2048, 4096];
const kSamples = [1, 4, 9, 16];

function save(blob: Blob, name: string): void {
    const address = URL.createObjectURL(blob);
    const anchor = h("a", { href: address, download: name });
    anchor.click();
    setTimeout(() => URL.revokeObjectURL(address), 10_000);
}

/** A name for files, of a title. */
function fileName(title: string): string {
    return (
        title
            .toLowerCase()
            .replace(/[^a-z0-9]+/g, "-")
            .replace(/^-|-$/g, "") || "picture"
    );
}

export function takeDialog(session: Session, stage: Stage): HTMLDialogElement {
    const menu = (
        label: string,
        values: readonly number[],
        text: (value: number) => string,
        chosen: number,
    ) => {
        const element = h(
            "select",
            { "aria-label": label },
            ...values.map((value) => h("option", { value }, text(value))),
        );
        element.value = String(chosen);
        element.addEventListener("change", () => showCommand());
        return element;
    };
    const size = menu("Size", kSizes, (value) => `${value} px`, 1024);
    const samples = menu(
        "Samples a pixel",
        kSamples,
        (value) => (value === 1 ? "1 sample" : `${value} samples`),
        4,
    );
    const allFrames = h("input", { type: "checkbox", role: "switch", onchange: () => showCommand() });
    const command = h("code", { class: "command", tabindex: 0, "aria-label": "Command" });
    const state = h("p", { class: "take-state", role: "status" });
    const name = fileName(session.title);

    const request = <F extends Format>(format: F) => ({
        ...stage.request(format, Number(size.value)),
        samples: Number(samples.value),
    });
    const showCommand = () => {
        try {
            const { view, document } = session;
            const plain =
                view.ground === "square" || view.ground === "scene"
                    ? { ...request("rgba8"), graph: document }
                    : request("rgba8");
            const frames = allFrames.checked ? session.frames : undefined;
            const picture = frames === undefined ? `${name}.png` : `${name}.####.png`;
            command.textContent = session.engine.command(plain, `${name}.json`, picture, view.over, frames);
        } catch (error) {
            command.textContent = error instanceof Error ? error.message : String(error);
        }
    };
    const picture = async (format: "rgba8" | "rgba16") => {
        state.textContent = "Shading …";
        try {
            const job = session.engine.bake<"rgba8" | "rgba16">(request(format), (part) => {
                state.textContent = `Shading … ${Math.round(part.progress * 100)} %`;
            });
            const file = format === "rgba8" ? `${name}.png` : `${name}-16.png`;
            save(await encodePng((await job.done) as Picture<"rgba8"> | Picture<"rgba16">), file);
            state.textContent = `Saved as ${file}.`;
        } catch (error) {
            state.textContent = error instanceof Error ? error.message : String(error);
        }
    };
    const graph = () => {
        const { ground } = session.view;
        const document =
            ground === "sphere" || ground === "torus"
                ? session.engine.documentOf(stage.request("rgba8", 512))
                : session.document;
        save(
            new Blob([JSON.stringify(document, null, 4) + "\n"], { type: "application/json" }),
            `${name}.json`,
        );
        state.textContent = `Saved as ${name}.json.`;
    };
    const dialog = h(
        "dialog",
        { class: "take", "aria-labelledby": "take-title" },
        h(
            "form",
            { method: "dialog" },
            h("button", { class: "icon-button close", "aria-label": "Close" }, icon("close")),
        ),
        h("h2", { id: "take-title" }, "Download"),
        h("div", { class: "take-row" }, size, samples),
        h(
            "div",
            { class: "take-row" },
            h("button", { type: "button", class: "main", onclick: () => void picture("rgba8") }, "PNG"),
            h("button", { type: "button", onclick: () => void picture("rgba16") }, "PNG, 16 bits"),
            h("button", { type: "button", onclick: graph }, "Graph"),
        ),
        h("p", { class: "take-note" }, "The same picture from the graph, with the installed command:"),
        session.frames !== undefined &&
            h(
                "label",
                { class: "take-frames" },
                allFrames,
                `all frames, ${session.frames.first} to ${session.frames.last}`,
            ),
        command,
        h(
            "button",
            {
                type: "button",
                class: "quiet",
                onclick: () =>
                    navigator.clipboard.writeText(command.textContent).then(
                        () => tell("The command is copied."),
                        () => tell("This browser copies nothing; select the command."),
                    ),
            },
            "Copy the command",
        ),
        state,
    );
    dialog.addEventListener("toggle", showCommand);
    showCommand();
    return dialog;
}
