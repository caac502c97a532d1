// Models from outside, read by three.js, as the engine takes them: triangles with a place. Loaded when first wanted.

import {
    Euler,
    Quaternion,
    Vector3,
    type Mesh as ThreeMesh,
    type Object3D,
    type PerspectiveCamera,
    type PointLight,
    type SpotLight,
} from "three";
import { GLTFLoader, type GLTFLoaderPlugin, type GLTFParser } from "three/examples/jsm/loaders/GLTFLoader.js";
import { OBJLoader } from "three/examples/jsm/loaders/OBJLoader.js";
import { mergeVertices, toCreasedNormals } from "three/examples/jsm/utils/BufferGeometryUtils.js";
import type { Engine, Mesh } from "./engine";
import { kLargestModel } from "./files";
import { know, type Element } from "./models";

const kCrease = Math.PI / 3; // what is flatter is smooth, in a mesh without normals

/** What a model names outside its own file, and those of it that aren't there. */
export interface Named {
    readonly files: Set<string>;
    readonly missing: Set<string>;
}

class MissingPart extends Error {}

interface GltfRoot {
    buffers?: { uri?: unknown }[];
    images?: { uri?: unknown }[];
    textures?: unknown;
    materials?: unknown;
    meshes?: { primitives?: { material?: unknown }[] }[];
}

const isOutside = (uri: unknown): uri is string => typeof uri === "string" && !/^data:/i.test(uri);

/** The last part of an address, as a file is called. */
function fileNameOf(uri: string): string {
    const last = uri.replace(/[?#].*$/, "").replace(/^.*[/\\]/, "");
    try {
        return decodeURIComponent(last);
    } catch {
        return last;
    }
}

function short(text: string): string {
    return text.length > 80 ? `${text.slice(0, 80)}…` : text;
}

/**
 * Lets a glTF read its buffers from the files beside it, and nothing from anywhere else. Its materials and pictures
 * aren't read at all: it gets the page's picture.
 */
function enclose(
    name: string,
    root: GltfRoot,
    beside: readonly File[],
    named: Named,
    opened: string[],
): void {
    for (const buffer of root.buffers ?? []) {
        const { uri } = buffer;
        if (!isOutside(uri)) continue;
        const file = beside.find((each) => each.name === fileNameOf(uri));
        if (file === undefined)
            throw new MissingPart(
                /^([a-z][a-z0-9+.-]*:|[/\\]{2})/i.test(uri)
                    ? `${name} needs ${short(uri)}, and the page fetches nothing from elsewhere.`
                    : `${name} needs ${short(fileNameOf(uri))}: drop both together.`,
            );
        named.files.add(file.name);
        opened.push(URL.createObjectURL(file));
        buffer.uri = opened.at(-1);
    }
    for (const { uri } of root.images ?? []) {
        if (!isOutside(uri)) continue;
        const file = fileNameOf(uri);
        (beside.some((each) => each.name === file) ? named.files : named.missing).add(file);
    }
    delete root.images;
    delete root.textures;
    delete root.materials;
    for (const mesh of root.meshes ?? [])
        for (const primitive of mesh.primitives ?? []) delete primitive.material;
}

async function readModel(
    name: string,
    data: ArrayBuffer,
    beside: readonly File[],
    named: Named,
): Promise<Object3D> {
    if (data.byteLength > kLargestModel) throw new Error(`${name} is larger than 128 MB.`);
    const opened: string[] = [];
    try {
        if (/\.obj$/i.test(name)) return new OBJLoader().parse(new TextDecoder().decode(data));
        const loader = new GLTFLoader();
        loader.register((parser: GLTFParser): GLTFLoaderPlugin => {
            enclose(name, parser.json as GltfRoot, beside, named, opened);
            return { name: "enclosed" };
        });
        return (await loader.parseAsync(data, "")).scene;
    } catch (error) {
        if (error instanceof MissingPart) throw error;
        throw new Error(`${name} is no OBJ, or no glTF that is complete.`);
    } finally {
        for (const address of opened) URL.revokeObjectURL(address);
    }
}

function isMesh(object: Object3D): object is ThreeMesh {
    return (object as Partial<ThreeMesh>).isMesh === true;
}

/** The triangles of a mesh in its own coordinates, lengths by `scale`. */
function trianglesOf(mesh: ThreeMesh, scale: readonly number[] = [1, 1, 1]): Mesh {
    const { position, normal, uv } = mesh.geometry.attributes;
    const count = position?.count ?? 0;
    const positions = new Float32Array(3 * count);
    const normals = new Float32Array(normal ? 3 * count : 0);
    const uvs = new Float32Array(uv ? 2 * count : 0);
    for (let i = 0; i < count; ++i) {
        const at = [position!.getX(i), position!.getY(i), position!.getZ(i)];
        positions.set(
            at.map((length, axis) => length * scale[axis]!),
            3 * i,
        );
        if (normal) {
            const bent = [normal.getX(i), normal.getY(i), normal.getZ(i)].map(
                (part, axis) => part / scale[axis]!,
            );
            const length = Math.hypot(...bent) || 1;
            normals.set(
                bent.map((part) => part / length),
                3 * i,
            );
        }
        // glTF counts V down from the top; three.js keeps it so and OBJ's upwards.
        if (uv) uvs.set([uv.getX(i), mesh.userData["fromGltf"] ? 1 - uv.getY(i) : uv.getY(i)], 2 * i);
    }
    const indices = mesh.geometry.index
        ? Uint32Array.from(mesh.geometry.index.array)
        : Uint32Array.from({ length: count }, (_, i) => i);
    return { positions, normals, uvs, indices };
}

/**
 * What a model is made of. Rejects with a sentence for the reader.
 * @param beside files that came with it; what it names of them goes into `named`
 */
export async function openModel(
    name: string,
    data: ArrayBuffer,
    beside: readonly File[] = [],
    named: Named = { files: new Set(), missing: new Set() },
): Promise<Object3D> {
    const model = await readModel(name, data, beside, named);
    model.updateMatrixWorld(true);
    let vertices = 0;
    const isObj = /\.obj$/i.test(name);
    const isBare = isObj && !/^vn\s/m.test(new TextDecoder().decode(data)); // three.js would make it flat
    model.traverse((object) => {
        object.userData["fromGltf"] = !isObj;
        if (!isMesh(object)) return;
        vertices += object.geometry.attributes["position"]?.count ?? 0;
        if (isBare || !object.geometry.attributes["normal"])
            object.geometry = toCreasedNormals(object.geometry, kCrease);
        if (object.geometry.index === null) object.geometry = mergeVertices(object.geometry, 1e-6);
    });
    if (vertices === 0) throw new Error(`${name} holds no triangles.`);
    return model;
}

/** All meshes of a model as one, in the coordinates of the model. */
export function wholeMesh(model: Object3D): Mesh {
    const parts: Mesh[] = [];
    model.traverse((object) => {
        if (!isMesh(object)) return;
        const part = object.clone();
        part.geometry = object.geometry.clone().applyMatrix4(object.matrixWorld);
        part.userData["fromGltf"] = object.userData["fromGltf"];
        parts.push(trianglesOf(part));
    });
    const total = (of: (part: Mesh) => number) => parts.reduce((sum, part) => sum + of(part), 0);
    const vertices = total((part) => part.positions.length / 3);
    const whole = {
        positions: new Float32Array(3 * vertices),
        normals: new Float32Array(3 * vertices),
        uvs: new Float32Array(parts.some(({ uvs }) => uvs.length > 0) ? 2 * vertices : 0),
        indices: new Uint32Array(total((part) => part.indices.length)),
    };
    let vertex = 0;
    let index = 0;
    for (const part of parts) {
        whole.positions.set(part.positions, 3 * vertex);
        whole.normals.set(part.normals, 3 * vertex);
        if (part.uvs.length > 0) whole.uvs.set(part.uvs, 2 * vertex);
        whole.indices.set(
            part.indices.map((each) => each + vertex),
            index,
        );
        vertex += part.positions.length / 3;
        index += part.indices.length;
    }
    return whole;
}

/** Gives the meshes of a scene's file to the engine, each by its node, and tells the elements that stand for the nodes. */
async function elementsOf(engine: Engine, file: string, model: Object3D): Promise<Element[]> {
    const elements: Element[] = [];
    const meshes: Promise<void>[] = [];
    model.traverse((object) => {
        const name = (object.userData["name"] as string | undefined) ?? object.name;
        if (name === "") return;
        const position = new Vector3();
        const turn = new Quaternion();
        const scale = new Vector3();
        object.matrixWorld.decompose(position, turn, scale);
        const angles = new Euler().setFromQuaternion(turn, "ZYX"); // about X, then Y, then Z
        const element: Element = {
            name,
            position: position.toArray(),
            rotation: [angles.x, angles.y, angles.z].map((angle) => (angle * 180) / Math.PI),
        };
        if (isMesh(object)) {
            element.shape = { kind: "model", file: `${file}#${name}` };
            meshes.push(engine.giveMesh(element.shape.file, trianglesOf(object, scale.toArray())));
        }
        const camera = object as Partial<PerspectiveCamera>;
        if (camera.isPerspectiveCamera) element.camera = { fieldOfView: camera.fov! };
        const light = lightOf(object as Partial<SpotLight> & Partial<PointLight>);
        if (light !== undefined) element.light = light;
        elements.push(element);
    });
    await Promise.all(meshes);
    return elements;
}

function lightOf(
    light: Partial<SpotLight> & Partial<PointLight> & { isDirectionalLight?: boolean },
): Element["light"] {
    const kind = light.isSpotLight
        ? "spot"
        : light.isPointLight
          ? "point"
          : light.isDirectionalLight
            ? "distant"
            : undefined;
    if (kind === undefined) return undefined;
    const degrees = (angle: number) => (angle * 180) / Math.PI;
    const outer = light.angle ?? 0;
    return {
        kind,
        color: light.color?.toArray(),
        brightness: light.intensity,
        ...(light.distance ? { range: [0, light.distance] } : {}),
        ...(kind === "spot" ? { cone: [degrees(outer * (1 - (light.penumbra ?? 0))), degrees(outer)] } : {}),
    };
}

/** Reads a scene's file, so that `withScene` knows it. */
export async function giveScene(engine: Engine, file: string, data: ArrayBuffer): Promise<void> {
    know(file, await elementsOf(engine, file, await openModel(file, data)));
}
