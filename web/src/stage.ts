// The picture, large: on the square, as the scene renders it, or on a body that can be turned.

import { h, icon, kForPixels, tell } from "./dom";
import type { Channel, Format, Mesh, Part, Picture, Request } from "./engine";
import { shaderAt } from "./graph";
import { withScene } from "./models";
import { Shading, type Shown } from "./shading";
import { kMostFrames, type Ground, type Session } from "./session";
import type { Solid } from "./solid";

const kChannels: { [channel in Channel]: string } = {
    color: "Colour",
    lit: "Under a lamp",
    normal: "Bent normal",
    value: "Value",
    alpha: "Alpha",
    coverage: "Coverage",
    main: "Main colour",
    second: "Second colour",
    third: "Third colour",
    fourth: "Fourth colour",
};
const kGrounds: { [ground in Ground]: string } = {
    square: "Square",
    scene: "Scene",
    sphere: "Sphere",
    torus: "Torus",
    model: "Model",
};
const kFramesASecond = 24;

/** A graph of one source, as what lies under a picture. */
function under(source: string | undefined): Pick<Request, "over"> {
    return source === undefined ? {} : { over: { shaders: { under: { source } }, output: "under" } };
}

export class Stage {
    readonly element: HTMLElement;
    readonly canvas = h("canvas", { class: "picture", role: "img", tabindex: -1 });
    readonly #session: Session;
    readonly #shading: Shading;
    readonly #bump: Shading;
    readonly #context = this.canvas.getContext("2d", kForPixels)!;
    readonly #solidPlace = h("div", { class: "solid", hidden: true });
    readonly #grounds = h("div", {
        class: "segments grounds",
        role: "radiogroup",
        "aria-label": "What the picture lies on",
    });
    readonly #channels = h("select", {
        "aria-label": "What is shown",
        onchange: () => this.#session.show({ channel: this.#channels.value as Channel }),
    });
    readonly #cameras = h("select", {
        "aria-label": "Camera",
        onchange: () => this.#session.show({ camera: this.#cameras.value }),
    });
    readonly #frames: HTMLElement;
    readonly #frameSlider = h("input", { type: "range", step: 1, "aria-label": "Frame" });
    readonly #frameText = h("output", { class: "frame-text" });
    readonly #lastFrame = h("input", {
        type: "number",
        class: "last-frame",
        max: kMostFrames,
        "aria-label": "Last frame",
    });
    readonly #animate = h(
        "button",
        {
            type: "button",
            title: "Let fields change from frame to frame",
            onclick: () => {
                this.#session.animate();
                this.#frameSlider.focus();
            },
        },
        "Animate",
    );
    readonly #play = h("button", { type: "button", class: "icon-button", onclick: () => this.#togglePlay() });
    readonly #fault = h("p", { class: "stage-fault", role: "alert", hidden: true });
    #solid: Solid | undefined;
    #model: { name: string; mesh: Mesh } | undefined;
    #shapes = new Map<Ground, Mesh>();
    #onSolid: Ground | undefined;
    #color: Picture<"rgba8"> | undefined;
    #normal: Picture<"rgba8"> | undefined;
    #playing = 0;
    #closed = false;

    constructor(session: Session, placeholder: string | undefined) {
        this.#session = session;
        this.#shading = new Shading(
            session.engine,
            this.#shown((picture, took) => this.#whole(picture, took)),
        );
        this.#bump = new Shading(
            session.engine,
            this.#shown((picture) => {
                this.#normal = picture;
                this.#dress();
            }),
        );
        this.#frames = h(
            "div",
            { class: "frames", hidden: true },
            this.#play,
            this.#frameSlider,
            this.#frameText,
            h("label", { class: "frame-text" }, "of", this.#lastFrame),
        );
        this.#lastFrame.addEventListener("change", () => {
            const wanted = Math.round(Number(this.#lastFrame.value));
            if (wanted >= 1) session.animate(Math.min(wanted, kMostFrames));
            const last = session.frames?.last ?? 1;
            this.#lastFrame.value = String(last);
            if (wanted >= 1 && wanted < last) tell(`The last key is at frame ${last}.`);
        });
        this.#frameSlider.addEventListener("input", () => {
            this.#stopPlay();
            session.goTo(Number(this.#frameSlider.value));
        });
        const frame = h("div", { class: "frame" }, this.canvas, this.#solidPlace);
        if (placeholder !== undefined) frame.style.setProperty("--placeholder", `url("${placeholder}")`);
        this.element = h(
            "section",
            { class: "stage", "aria-label": "Picture" },
            frame,
            this.#fault,
            h("div", { class: "stage-bar" }, this.#grounds, this.#channels, this.#cameras, this.#animate),
            this.#frames,
        );
        session.addEventListener("document", () => this.#ask());
        session.addEventListener("frame", () => {
            this.#ask();
            this.#bar();
        });
        session.addEventListener("frames", () => this.#bar());
        session.addEventListener("view", () => this.#viewed());
        session.addEventListener("check", () => this.#checked());
        this.#showPlay();
        this.#viewed();
    }

    /** What is shown now, as a request for the engine; of any size and format. */
    request<F extends Format>(format: F, size: number): Request<F> {
        const { view, frame } = this.#session;
        const graph = withScene(this.#session.document);
        const base = { graph, format, frame, width: size, height: size };
        switch (view.ground) {
            case "scene":
                return {
                    ...base,

                    surface: { kind: "render", ...(view.camera ? { camera: view.camera } : {}) },
                };
            case "sphere":
            case "torus":
                return {
                    ...base,
                    width: 2 * size,
                    channel: this.#worn,
                    surface: { kind: "shape", shape: view.ground },
                };
            case "model":
                return {
                    ...base,
                    channel: this.#worn,
                    surface: { kind: "mesh", mesh: this.#model?.name ?? "" },
                };
            default:
                return {
                    ...base,
                    channel: view.channel,
                    ...(view.channel === "color" ? under(view.over) : {}),
                };
        }
    }

    /** Resolves when all that was asked for is shown. */
    async settled(): Promise<void> {
        while (!this.#closed && (this.#shading.busy || this.#bump.busy))
            await new Promise((done) => requestAnimationFrame(done));
    }

    /** A model of one's own under the picture. */
    async takeModel(name: string, mesh: Mesh): Promise<void> {
        await this.#session.engine.giveMesh(name, mesh);
        if (mesh.uvs.length === 0) tell(`${name} has no UV: it is seen in one colour.`);
        this.#model = { name, mesh };
        this.#onSolid = undefined;
        this.#session.show({ ground: "model" });
    }

    refresh(): void {
        this.#ask();
    }

    close(): void {
        this.#closed = true;
        this.#stopPlay();
        this.#shading.stop();
        this.#bump.stop();
        this.#solid?.close();
    }

    /** What a body wears: it stands under a lamp of its own. */
    get #worn(): Channel {
        const { channel } = this.#session.view;
        return channel === "lit" ? "color" : channel;
    }

    #shown(done: (picture: Picture<"rgba8">, took: number) => void): Shown {
        return {
            part: (part) => this.#part(part),
            done: (picture, took) => done(picture as Picture<"rgba8">, took),
            failed: (error) => {
                this.element.dataset["state"] = "failed";
                this.#session.refused(error);
            },
        };
    }

    #part(part: Part): void {
        if (this.#session.view.ground !== "square" && this.#session.view.ground !== "scene") return;
        const { width, height, pixels } = part.picture as Picture<"rgba8">;
        const scale = 2 ** part.level;
        const image = new ImageData(pixels, width, height);
        if (scale === 1) {
            this.#context.putImageData(image, part.left, part.top);
            return;
        }
        const small = new OffscreenCanvas(width, height);
        small.getContext("2d", kForPixels)!.putImageData(image, 0, 0);
        this.#context.clearRect(part.left * scale, part.top * scale, width * scale, height * scale);
        this.#context.imageSmoothingQuality = "high";
        this.#context.drawImage(small, part.left * scale, part.top * scale, width * scale, height * scale);
    }

    #whole(picture: Picture<"rgba8">, took: number): void {
        this.#session.shaded();
        const { ground } = this.#session.view;
        if (ground === "square" || ground === "scene") {
            if (this.canvas.width !== picture.width || this.canvas.height !== picture.height) {
                this.canvas.width = picture.width;
                this.canvas.height = picture.height;
            }
            this.#context.putImageData(new ImageData(picture.pixels, picture.width, picture.height), 0, 0);
        } else {
            this.#color = picture;
            this.#dress();
        }
        this.element.classList.add("shaded");
        this.element.dataset["state"] = this.#shading.busy ? "shading" : "ready";
        this.element.dispatchEvent(new CustomEvent("picture", { detail: { picture, took } }));
    }

    #ask(): void {
        if (this.#closed) return;
        const { view, engine } = this.#session;
        if (view.ground === "model" && this.#model === undefined) return;
        this.element.dataset["state"] = "shading";
        const isFlat = view.ground === "square" || view.ground === "scene";
        if (isFlat) {
            const { width, height } = this.request("rgba8", view.size);
            if (this.canvas.width !== width || this.canvas.height !== height) {
                this.canvas.width = width;
                this.canvas.height = height;
            }
        }
        this.#shading.ask(() => this.request("rgba8", view.size));
        const check = this.#session.check;
        const bends =
            !isFlat && this.#worn === "color" && check?.ok === true && check.channels.includes("normal");
        if (bends && engine.workers > 0)
            this.#bump.ask(() => ({ ...this.request("rgba8", view.size), channel: "normal" }));
        else this.#normal = undefined;
    }

    #dress(): void {
        if (this.#solid !== undefined && this.#color !== undefined)
            this.#solid.showMaps(this.#color, this.#normal);
    }

    async #viewed(): Promise<void> {
        const { ground } = this.#session.view;
        const isFlat = ground === "square" || ground === "scene";
        this.canvas.hidden = !isFlat;
        this.#solidPlace.hidden = isFlat;
        this.#bar();
        this.#ask();
        if (isFlat) return;
        try {
            await this.#showSolid(ground);
        } catch (error) {
            tell(`This browser shows no bodies: ${error instanceof Error ? error.message : String(error)}`);
            this.#session.show({ ground: "square" });
        }
    }

    async #showSolid(ground: Ground): Promise<void> {
        if (this.#solid === undefined) {
            const { Solid } = await import("./solid");
            if (this.#closed) return;
            if (this.#solid === undefined) {
                const canvas = h("canvas", {
                    tabindex: 0,
                    role: "img",
                    "aria-label":
                        "The picture on a body. Arrow keys turn it, plus and minus come nearer and go away.",
                });
                this.#solidPlace.replaceChildren(canvas);
                this.#solid = new Solid(canvas);
                new ResizeObserver(() => this.#solid?.draw()).observe(this.#solidPlace);
            }
        }
        if (this.#onSolid !== ground) {
            let mesh = ground === "model" ? this.#model?.mesh : this.#shapes.get(ground);
            if (mesh === undefined && (ground === "sphere" || ground === "torus")) {
                mesh = await this.#session.engine.shapeMesh(ground);
                this.#shapes.set(ground, mesh);
            }
            if (mesh === undefined || this.#session.view.ground !== ground) return;
            this.#onSolid = ground;
            this.#solid.showMesh(mesh);
        }
        this.#dress();
        this.#solid.draw();
    }

    #checked(): void {
        const { check, problem } = this.#session;
        this.#fault.hidden = problem === undefined;
        if (problem !== undefined) {
            const name = shaderAt(problem.pointer);
            const go =
                name !== undefined &&
                name !== this.#session.selected &&
                h("button", { type: "button", onclick: () => this.#session.select(name) }, `Show ${name}`);
            const place =
                name !== undefined
                    ? `${name || "“”"}: `
                    : problem.pointer
                      ? `${problem.pointer.slice(1).replaceAll("/", ", ")}: `
                      : "";
            this.#fault.replaceChildren(place + problem.message, ...(go ? [" ", go] : []));
        }
        this.#bar();
        // A bent normal may have come or gone.
        if (
            check?.ok &&
            this.#session.view.ground !== "square" &&
            this.#session.view.ground !== "scene" &&
            (this.#normal !== undefined) !== check.channels.includes("normal")
        )
            this.#ask();
    }

    #bar(): void {
        const { view, frame, frames } = this.#session;
        const { cameras, channels } = this.#session.offered ?? { cameras: [], channels: [view.channel] };
        const grounds: Ground[] = [
            "square",
            ...(cameras.length > 0 || view.ground === "scene" ? (["scene"] as const) : []),
            "sphere",
            "torus",
            ...(this.#model ? (["model"] as const) : []),
        ];
        const drawn = JSON.stringify([cameras, channels, grounds, view]);
        if (this.#grounds.dataset["drawn"] !== drawn) {
            this.#grounds.dataset["drawn"] = drawn;
            const hadFocus = this.#grounds.contains(document.activeElement);
            this.#grounds.replaceChildren(
                ...grounds.map((ground) => {
                    const input = h("input", {
                        type: "radio",
                        name: "ground",
                        value: ground,
                        "aria-label": kGrounds[ground],
                        onchange: () => this.#session.show({ ground }),
                    });
                    input.checked = ground === view.ground;
                    return h("label", {}, input, h("span", {}, kGrounds[ground]));
                }),
            );
            if (hadFocus) this.#grounds.querySelector<HTMLInputElement>(":checked")?.focus();
            this.#channels.replaceChildren(
                ...channels.map((channel) => h("option", { value: channel }, kChannels[channel])),
            );
            this.#channels.value = view.channel;
            this.#channels.hidden = view.ground === "scene" || channels.length < 2;
            this.#cameras.replaceChildren(...cameras.map((camera) => h("option", { value: camera }, camera)));
            this.#cameras.value = view.camera ?? cameras[0] ?? "";
            this.#cameras.hidden = view.ground !== "scene" || cameras.length < 2;
        }
        this.#animate.hidden = frames !== undefined;
        this.#frames.hidden = frames === undefined;
        if (frames !== undefined) {
            this.#frameSlider.min = String(frames.first);
            this.#frameSlider.max = String(frames.last);
            this.#lastFrame.min = String(Math.max(frames.first, 1));
            if (document.activeElement !== this.#lastFrame) this.#lastFrame.value = String(frames.last);
        }
        this.#frameSlider.value = String(frame);
        const { min, max } = this.#frameSlider;
        const share = (frame - Number(min)) / Math.max(1, Number(max) - Number(min));
        this.#frameSlider.style.setProperty("--share", String(share));
        this.#frameText.textContent = `Frame ${frame}`;
        this.canvas.setAttribute(
            "aria-label",
            `${this.#session.title}: ${kGrounds[view.ground].toLowerCase()}, ${kChannels[view.channel].toLowerCase()}`,
        );
    }

    #togglePlay(): void {
        if (this.#playing !== 0) {
            this.#stopPlay();
            return;
        }
        if (this.#session.frames === undefined) return;
        const { first, last } = this.#session.frames;
        const count = last - first + 1;
        const start = performance.now() - ((this.#session.frame - first) / kFramesASecond) * 1000;
        const step = () => {
            this.#playing = requestAnimationFrame(step);
            if (this.#shading.busy) return; // a frame that takes long is shown whole; later ones are left out
            const passed = Math.floor(((performance.now() - start) / 1000) * kFramesASecond);
            this.#session.goTo(first + (passed % count));
            this.#bar();
        };
        this.#playing = requestAnimationFrame(step);
        this.#showPlay();
    }

    #stopPlay(): void {
        cancelAnimationFrame(this.#playing);
        this.#playing = 0;
        this.#showPlay();
    }

    #showPlay(): void {
        const isPlaying = this.#playing !== 0;
        this.#play.setAttribute("aria-label", isPlaying ? "Pause" : "Play");
        this.#play.title = isPlaying ? "Pause" : "Play";
        this.#play.replaceChildren(icon(isPlaying ? "pause" : "play"));
    }
}
