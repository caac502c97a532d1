// The picture on a body that can be turned: three.js with the baked maps. Loaded when it is first wanted.

import {
    BufferAttribute,
    BufferGeometry,
    DataTexture,
    DirectionalLight,
    HemisphereLight,
    LinearFilter,
    LinearMipmapLinearFilter,
    Mesh as ThreeMesh,
    MeshStandardMaterial,
    NoColorSpace,
    PerspectiveCamera,
    RepeatWrapping,
    RGBAFormat,
    Scene,
    SRGBColorSpace,
    WebGLRenderer,
} from "three";
import { OrbitControls } from "three/examples/jsm/controls/OrbitControls.js";
import type { Mesh, Picture } from "./engine";

export class Solid {
    readonly canvas: HTMLCanvasElement;
    readonly #renderer: WebGLRenderer;
    readonly #scene = new Scene();
    readonly #camera = new PerspectiveCamera(32, 1, 0.01, 100);
    readonly #controls: OrbitControls;
    readonly #material = new MeshStandardMaterial({ roughness: 0.62, metalness: 0, transparent: true });
    readonly #body = new ThreeMesh(new BufferGeometry(), this.#material);
    #waits = false;
    #closed = false;

    /** Throws where there is no WebGL. */
    constructor(canvas: HTMLCanvasElement) {
        this.canvas = canvas;
        this.#renderer = new WebGLRenderer({ canvas, antialias: true, alpha: true });
        this.#camera.position.set(0, 0.9, 4.4);
        const lamp = new DirectionalLight(0xffffff, 2.6);
        lamp.position.set(-2, 3, 3);
        this.#camera.add(lamp);
        this.#scene.add(this.#camera, new HemisphereLight(0xffffff, 0x8a8580, 1.1), this.#body);
        this.#controls = new OrbitControls(this.#camera, canvas);
        this.#controls.enablePan = false;
        this.#controls.minDistance = 1.5;
        this.#controls.maxDistance = 12;
        this.#controls.addEventListener("change", () => this.draw());
        canvas.addEventListener("keydown", (event) => this.#key(event));
    }

    showMesh(mesh: Mesh): void {
        const geometry = new BufferGeometry();
        geometry.setAttribute("position", new BufferAttribute(mesh.positions, 3));
        if (mesh.normals.length > 0) geometry.setAttribute("normal", new BufferAttribute(mesh.normals, 3));
        if (mesh.uvs.length > 0) geometry.setAttribute("uv", new BufferAttribute(mesh.uvs, 2));
        geometry.setIndex(new BufferAttribute(mesh.indices, 1));
        if (mesh.normals.length === 0) geometry.computeVertexNormals();
        geometry.computeBoundingSphere();
        const { center, radius } = geometry.boundingSphere!;
        this.#body.geometry.dispose();
        this.#body.geometry = geometry;
        // Any model fills the view as a sphere of radius 1 does.
        this.#body.scale.setScalar(1 / (radius || 1));
        this.#body.position.copy(center).multiplyScalar(-1 / (radius || 1));
        this.draw();
    }

    /** The colour, and where there is one the bent normal, each a map over U and V. */
    showMaps(color: Picture<"rgba8">, normal: Picture<"rgba8"> | undefined): void {
        this.#material.map = this.#texture(this.#material.map as DataTexture | null, color, SRGBColorSpace);
        const before = this.#material.normalMap === null;
        if (normal !== undefined)
            this.#material.normalMap = this.#texture(
                this.#material.normalMap as DataTexture | null,
                normal,
                NoColorSpace,
            );
        else {
            this.#material.normalMap?.dispose();
            this.#material.normalMap = null;
        }
        if (before !== (this.#material.normalMap === null) || this.#material.version === 0)
            this.#material.needsUpdate = true;
        this.draw();
    }

    #texture(
        old: DataTexture | null,
        { width, height, pixels }: Picture<"rgba8">,
        space: string,
    ): DataTexture {
        let texture = old;
        if (texture === null || texture.image.width !== width || texture.image.height !== height) {
            texture?.dispose();
            texture = new DataTexture(new Uint8Array(4 * width * height), width, height, RGBAFormat);
            texture.colorSpace = space;
            texture.wrapS = texture.wrapT = RepeatWrapping;
            texture.magFilter = LinearFilter;
            texture.minFilter = LinearMipmapLinearFilter;
            texture.generateMipmaps = true;
            texture.anisotropy = this.#renderer.capabilities.getMaxAnisotropy();
            this.#material.needsUpdate = true;
        }
        // The engine's rows come from the top, those of a texture from the bottom.
        const data = texture.image.data as Uint8Array;
        for (let row = 0; row < height; ++row)
            data.set(pixels.subarray(4 * width * row, 4 * width * (row + 1)), 4 * width * (height - 1 - row));
        texture.needsUpdate = true;
        return texture;
    }

    /** In the next frame of the screen. */
    draw(): void {
        if (this.#waits || this.#closed) return;
        this.#waits = true;
        requestAnimationFrame(() => {
            this.#waits = false;
            if (this.#closed) return;
            const { clientWidth, clientHeight } = this.canvas;
            if (clientWidth === 0 || clientHeight === 0) return;
            this.#renderer.setPixelRatio(Math.min(2, devicePixelRatio));
            this.#renderer.setSize(clientWidth, clientHeight, false);
            this.#camera.aspect = clientWidth / clientHeight;
            this.#camera.updateProjectionMatrix();
            this.#renderer.render(this.#scene, this.#camera);
        });
    }

    close(): void {
        this.#closed = true;
        this.#controls.dispose();
        this.#material.map?.dispose();
        this.#material.normalMap?.dispose();
        this.#material.dispose();
        this.#body.geometry.dispose();
        this.#renderer.dispose();
        this.#renderer.forceContextLoss();
    }

    #key(event: KeyboardEvent): void {
        const turns: { [key: string]: [number, number] } = {
            ArrowLeft: [-0.12, 0],
            ArrowRight: [0.12, 0],
            ArrowUp: [0, -0.1],
            ArrowDown: [0, 0.1],
        };
        const turn = turns[event.key];
        const zoom = event.key === "+" ? 0.9 : event.key === "-" ? 1.1 : 1;
        if (turn === undefined && zoom === 1) return;
        event.preventDefault();
        const [around, over] = turn ?? [0, 0];
        const { position } = this.#camera;
        const distance = position.length() * zoom;
        const polar = Math.min(3, Math.max(0.14, Math.acos(position.y / position.length()) + over));
        const azimuth = Math.atan2(position.x, position.z) + around;
        position
            .set(Math.sin(polar) * Math.sin(azimuth), Math.cos(polar), Math.sin(polar) * Math.cos(azimuth))
            .multiplyScalar(distance);
        this.#controls.update();
        this.draw();
    }
}
