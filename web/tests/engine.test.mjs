import assert from "node:assert/strict";
import { mkdtemp, readdir, readFile, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { difference, native, readObj, readPicture } from "./engine-files.mjs";
import { CancelledError, EngineError, kRoot, load } from "./engine-setup.mjs";

const kExamples = `${kRoot}examples`;
const kSide = 256;
const kModels = {
    "vase.obj": "Vase",
    "shell.obj": "Shell",
    "bollard.obj": "Bollard",
    "cushion.obj": "Cushion",
};
// Their models only the page's readers know: one without normals, and one of glTF.
const kNotHere = ["curvature-mesh.json", "studio.json"];

let engine;
before(async () => {
    engine = await load();
    for (const name of ["backdrop.png", "yarn.png"])
        await engine.givePicture(name, await readPicture(`${kExamples}/${name}`));
    for (const [file, node] of Object.entries(kModels))
        await engine.giveMesh(`${file}#${node}`, await readObj(`${kExamples}/${file}`));
});
after(() => engine.dispose());

/** An example whose model, if any, is an element of its scene, as the page makes it. */
async function example(name) {
    const graph = JSON.parse(await readFile(`${kExamples}/${name}`, "utf8"));
    const { file, nodes, ...scene } = graph.scene ?? {};
    if (file === undefined) return graph;
    const node = kModels[file];
    const element = { name: node, shape: { kind: "model", file: `${file}#${node}` }, ...nodes?.[node] };
    return { ...graph, scene: { ...scene, elements: [element, ...(scene.elements ?? [])] } };
}

test("every example is what the command makes of it, within a step of 255", async (t) => {
    const names = (await readdir(kExamples)).filter(
        (name) => name.endsWith(".json") && !kNotHere.includes(name),
    );
    assert.ok(names.length > 40);
    let worst = 0;
    for (const name of names) {
        const graph = await example(name);
        const check = await engine.check(graph);
        assert.ok(check.ok, `${name}: ${check.problem?.pointer} ${check.problem?.message}`);
        const request = { graph, width: kSide, height: kSide };
        const size = ["--size", `${kSide}x${kSide}`];
        const pictures = [
            [await engine.bake(request).done, await native("bake", `${kExamples}/${name}`, ...size)],
        ];
        if (check.cameras.length > 0)
            pictures.push([
                await engine.bake({ ...request, surface: { kind: "render" } }).done,
                await native("render", `${kExamples}/${name}`, "--samples", "4", ...size),
            ]);
        for (const [own, others] of pictures) {
            const { most, several } = difference(own, others);
            if (most > 0)
                t.diagnostic(`${name}: ${most} of 255 at most, ${several} numbers by more than one`);
            worst = Math.max(worst, most);
        }
    }
    t.diagnostic(`the largest difference is ${worst} of 255`);
    assert.ok(worst <= 1);
});

const kCloth = {
    shaders: {
        cloth: {
            class: "Weave",
            fRepeatU: 4,
            fRepeatV: 4,
            fWarpSubShader: Array(5).fill("red"),
            fWeftSubShader: Array(5).fill("ramp"),
        },
        red: { source: "color", color: [0.6, 0.1, 0.1] },
        ramp: { source: "ramp" },
    },
    output: "cloth",
};

test("the tables tell classes and sources with their defaults", () => {
    assert.equal(engine.classes.length, 19);
    assert.equal(engine.sources.length, 7);
    const field = (table, name) => engine.table(table).fields.find((other) => other.name === name);
    assert.deepEqual(field("Super_mixer", "fRange[1]").default, [10, 20]);
    assert.deepEqual(field("Fresnel", "fMode").choices.length > 1, true);
    assert.equal(field("Weave", "fGapSubShader").type, "shader");
    assert.deepEqual(engine.table("Curvature").kind, "class"); // which only the second module makes
    assert.deepEqual(field("checker", "countU").minimum, 1);
});

test("a region, and coarse pictures before the full one", async () => {
    const request = { graph: kCloth, width: 300, height: 200, format: "float" };
    const whole = await engine.bake(request).done;
    const region = { left: 100, top: 50, right: 290, bottom: 199 };
    const part = await engine.bake({ ...request, region }).done;
    assert.deepEqual([part.width, part.height], [190, 149]);
    for (let y = 0; y < part.height; ++y) {
        const start = 4 * ((region.top + y) * whole.width + region.left);
        assert.deepEqual(
            part.pixels.subarray(4 * y * 190, 4 * (y + 1) * 190),
            whole.pixels.subarray(start, start + 4 * 190),
        );
    }
    for (let round = 0; round < 20; ++round) {
        // whichever worker is the quicker one
        const parts = [];
        await engine.bake({ ...request, coarse: 2 }, (told) => parts.push(told)).done;
        assert.deepEqual(
            parts.map(({ level, picture }) => [level, picture.width, picture.height]),
            [
                [2, 75, 50],
                [1, 150, 100],
                ...parts.slice(2).map(({ picture }) => [0, picture.width, picture.height]),
            ],
        );
        assert.equal(parts.length, 8);
        assert.equal(parts.at(-1).progress, 1);
    }
});

test("pictures of 8 and 16 bits are what the command writes", async () => {
    const graph = `${kExamples}/weave-rounded.json`;
    const text = await readFile(graph, "utf8");
    for (const [channel, bits] of [
        ["normal", 16],
        ["lit", 16],
        ["alpha", 8],
        ["color", 16],
    ]) {
        const options = ["--size", "130x70", "--output", channel, "--bits", `${bits}`];
        const own = await engine.bake({ graph: text, width: 130, height: 70, channel, format: `rgba${bits}` })
            .done;
        const { most } = difference(own, await native("bake", graph, ...options));
        assert.ok(most <= (bits === 8 ? 1 : 16), `${channel}: ${most}`);
    }
});

test("shapes and meshes are baked where rays meet them", async () => {
    const graph = {
        shaders: {
            place: {
                class: "Location",
                "fAxes[1].fEnabled": true,
                "fAxes[1].fEdgeA": -3,
                "fAxes[1].fEdgeB": 3,
            },
        },
        output: "place",
    };
    for (const shape of ["sphere", "torus", "plane", "saddle", "box"]) {
        const request = { graph, width: 64, height: 64, surface: { kind: "shape", shape }, format: "float" };
        const map = await engine.bake(request).done;
        const { positions, normals, uvs, indices } = await engine.shapeMesh(shape);
        assert.equal(positions.length / 3, uvs.length / 2);
        assert.ok(indices.every((index) => index < positions.length / 3));
        for (let i = 0; i < normals.length; i += 3)
            assert.ok(Math.abs(Math.hypot(...normals.slice(i, i + 3)) - 1) < 1e-5);
        const values = map.pixels.filter((_, i) => i % 4 === 0);
        assert.ok(Math.max(...values) - Math.min(...values) > 0.2, shape); // it differs along the axis
    }
    const onto = { graph: await example("cushion.json"), width: 200, height: 100 };
    const map = await engine.bake({
        ...onto,
        surface: { kind: "mesh", mesh: "cushion.obj#Cushion", margin: 8 },
    }).done;
    const options = ["--onto", `${kExamples}/cushion.obj`, "--margin", "8", "--size", "200x100"];
    assert.ok(difference(map, await native("bake", `${kExamples}/cushion.json`, ...options)).most <= 1);
});

test("a view is the command's own, and tells the graph for it", async () => {
    const graph = {
        shaders: { Iridescent: { class: "Iridescent", fObjectName: "Target" } },
        output: "Iridescent",
    };
    const request = { graph, width: 128, height: 128, surface: { kind: "view", shape: "torus" }, samples: 9 };
    const own = await engine.bake(request).done;
    const others = await native("shade", "Iridescent", "--on", "torus", "--size", "128x128");
    assert.ok(difference(own, others).most <= 1);
    assert.equal(engine.documentOf(request).scene.camera, "Camera");
    const command = engine.command(request, "a graph.json", "out.png");
    assert.equal(command, "fernwick render 'a graph.json' --size 128x128 --samples 9 -o out.png");
});

test("frames of a sequence", async () => {
    const graph = await readFile(`${kExamples}/ripple-sequence.json`, "utf8");
    const { frames } = await engine.check(graph);
    assert.deepEqual(frames, { first: 1, last: 24 });
    const all = engine.command(
        { graph, width: 512, height: 512 },
        "pond.json",
        "pond.####.png",
        undefined,
        frames,
    );
    assert.equal(all, "fernwick bake pond.json --frames 1-24 -o 'pond.####.png'");
    const own = await engine.bake({ graph, frame: 12, width: 100, height: 100 }).done;
    const others = await native(
        "bake",
        `${kExamples}/ripple-sequence.json`,
        "--frames",
        "12",
        "--size",
        "100x100",
    );
    assert.ok(difference(own, others).most <= 1);
});

test("a newer job cancels the one in its slot, and no other", async () => {
    const request = { graph: kCloth, width: 512, height: 512 };
    const other = engine.bake(request);
    const older = engine.bake({ ...request, slot: "picture" });
    const newer = engine.bake({ ...request, slot: "picture" });
    await assert.rejects(older.done, CancelledError);
    assert.equal((await newer.done).width, 512);
    assert.equal((await other.done).width, 512);
});

test("errors name their place", async () => {
    const problemOf = async (graph) => {
        const check = await engine.check(graph);
        assert.ok(!check.ok, JSON.stringify(graph).slice(0, 200));
        await assert.rejects(engine.bake({ graph, width: 8, height: 8, coarse: 1 }).done, EngineError);
        return check.problem;
    };
    const withCloth = (fields) => ({
        ...kCloth,
        shaders: { ...kCloth.shaders, "a.b/c": { class: "Weave", ...fields } },
    });
    assert.deepEqual(await problemOf(withCloth({ fRepeatU: "x" })), {
        pointer: "/shaders/a.b~1c/fRepeatU",
        message: 'expected an integer, got "x"',
    });
    assert.equal(
        (await problemOf(withCloth({ fWarpSubShader: ["red", "none", null, null, null] }))).pointer,
        "/shaders/a.b~1c/fWarpSubShader/1",
    );
    assert.equal((await problemOf({ ...kCloth, output: "clothes" })).pointer, "/output");
    assert.equal(
        (await problemOf({ ...kCloth, scene: { elements: [{ name: "A", shape: { kind: "ball" } }] } }))
            .pointer,
        "/scene/elements/0/shape/kind",
    );
    const picture = await problemOf(withCloth({ fGapSubShader: "red", fWarpSubShader: 1 }));
    assert.match(picture.message, /^expected an array of 5/);
    const missing = await problemOf({ shaders: { a: { source: "picture", file: "none.png" } }, output: "a" });
    assert.deepEqual(
        [missing.pointer, missing.message.startsWith('there is no picture "none.png"')],
        ["/shaders/a/file", true],
    );
    const broken = await problemOf('{"shaders": {\n  "a": }');
    assert.deepEqual([broken.line, broken.column !== undefined], [2, true]);
});

test("a pattern repeated no times is what the command makes of it", async () => {
    const folder = await mkdtemp(join(tmpdir(), "fernwick-"));
    const cloth = { ...kCloth.shaders.cloth, fRepeatU: 0 };
    for (const graph of [
        { ...kCloth, shaders: { ...kCloth.shaders, cloth } },
        { shaders: { wheel: { class: "Spoke", fCount: 0 } }, output: "wheel" },
    ]) {
        const file = join(folder, "graph.json");
        await writeFile(file, JSON.stringify(graph));
        const own = await engine.bake({ graph, width: 40, height: 30 }).done;
        assert.ok(difference(own, await native("bake", file, "--size", "40x30")).most <= 1);
    }
    await rm(folder, { recursive: true });
});

test("whatever a graph holds is refused or baked, and the engine goes on", async () => {
    const circle = {
        shaders: { a: { class: "Gray", fSubShader: "b" }, b: { class: "Gray", fSubShader: "a" } },
        output: "a",
    };
    const chain = { shaders: {}, output: "0" };
    for (let i = 0; i < 300; ++i)
        chain.shaders[i] = { class: "Gray", fSubShader: i < 299 ? `${i + 1}` : null };
    const deep = { shaders: {}, output: "0" };
    for (let i = 0; i < 250; ++i)
        deep.shaders[i] = { class: "Gray", fSubShader: i < 249 ? `${i + 1}` : null };
    const refused = [
        circle,
        chain,
        "",
        "null",
        "[]",
        "7",
        '"x"',
        "{}",
        '{"shaders": 5, "output": "a"}',
        "[".repeat(100000),
        "\u0000",
        '{"shaders": {"a": {"class": 3}}, "output": "a"}',
        '{"shaders": {"a": {"source": "color", "color": [1e999, 0, 0]}}, "output": "a"}',
        '{"a": 1, "a": 2}',
        { ...kCloth, scene: { file: "/etc/passwd" } },
        { ...kCloth, scene: { elements: [{ name: "x", children: 3 }] } },
    ];
    for (const graph of refused)
        await assert.rejects(
            engine.bake({ graph, width: 8, height: 8 }).done,
            EngineError,
            String(JSON.stringify(graph)).slice(0, 80),
        );
    await engine.bake({ graph: deep, width: 8, height: 8 }).done;
    const size = { graph: kCloth, width: 8, height: 8 };
    for (const wrong of [
        { width: 0 },
        { width: 1e9 },
        { height: NaN },
        { width: 2.5 },
        { samples: 1e9 },
        { samples: "x" },
        { channel: "smell" },
        { channel: "third" },
        { format: "rgba8", region: { left: 5, top: 0, right: 5, bottom: 8 } },
        { region: { left: -1, top: 0, right: 8, bottom: 8 } },
        { surface: { kind: "render" } },
        { surface: { kind: "mesh", mesh: "none" } },
        { surface: { kind: "shape", shape: "pear" } },
        { surface: { kind: "hole" } },
        { over: "{" },
        { frame: "x" },
    ])
        await assert.rejects(engine.bake({ ...size, ...wrong }).done, EngineError, JSON.stringify(wrong));
    const mesh = await engine.shapeMesh("box");
    await assert.rejects(
        engine.giveMesh("bad", { ...mesh, indices: new Uint32Array([0, 1, 99]) }),
        EngineError,
    );
    await assert.rejects(engine.giveMesh("bad", { ...mesh, uvs: new Float32Array(3) }), EngineError);
    await assert.rejects(
        engine.givePicture("bad", { width: 2, height: 2, pixels: new Uint8Array(3) }),
        EngineError,
    );
    assert.equal((await engine.bake(size).done).width, 8);
});
