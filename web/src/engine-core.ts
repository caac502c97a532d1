// One instance of the engine: what web/native exports, called in turn, without threads.

import type { Mesh, GivenPicture, Problem } from "./engine";

/** What `Call` of web/native/Exports.cpp takes, and its reply. */
export type Json = { readonly [key: string]: unknown };

export interface Reply {
    readonly value: Json;
    /** A copy of the numbers that the call made. */
    readonly numbers?: ArrayBuffer;
}

/** A call that the engine refused. */
export class Refusal extends Error {
    readonly problem: Problem;
    constructor(problem: Problem) {
        super(problem.message);
        this.problem = problem;
    }
}

interface Exports {
    readonly memory: WebAssembly.Memory;
    _initialize(): void;
    Allocate(size: number): number;
    Free(room: number): void;
    Call(text: number, size: number): number;
    Reply(): number;
    ReplySize(): number;
}

/** What libc asks of a system. There is none: no files, no environment, no clock, and nothing is printed. */
function systemFor(module: WebAssembly.Module, memory: () => WebAssembly.Memory): WebAssembly.Imports {
    const kNotSupported = 52; // __WASI_ERRNO_NOSYS
    const store = (address: number, value: number) =>
        new DataView(memory().buffer).setUint32(address, value, true);
    const known: { [name: string]: (...args: number[]) => number | void } = {
        emscripten_notify_memory_growth: () => {},
        environ_sizes_get: (count = 0, size = 0) => {
            store(count, 0);
            store(size, 0);
            return 0;
        },
        environ_get: () => 0,
        proc_exit: (code) => {
            throw new Error(`the engine ended with ${code}`);
        },
    };
    const imports: { [module: string]: { [name: string]: WebAssembly.ImportValue } } = {};
    for (const { module: from, name, kind } of WebAssembly.Module.imports(module))
        if (kind === "function") (imports[from] ??= {})[name] = known[name] ?? (() => kNotSupported);
    return imports;
}

export class EngineCore {
    readonly #exports: Exports;

    private constructor(exports: Exports) {
        this.#exports = exports;
    }

    static async load(module: WebAssembly.Module): Promise<EngineCore> {
        let exports: Exports | undefined;
        const imports = systemFor(module, () => exports!.memory);
        const instance = await WebAssembly.instantiate(module, imports);
        exports = instance.exports as unknown as Exports;
        exports._initialize();
        return new EngineCore(exports);
    }

    /**
     * @param numbers copied into the engine for the call; the request gets their addresses by name
     * Throws `Refusal`; anything else means that this instance can't be used any more.
     */
    call(request: Json, numbers: { readonly [name: string]: ArrayBufferView } = {}): Reply {
        const rooms: number[] = [];
        const put = (bytes: Uint8Array): number => {
            const room = this.#exports.Allocate(bytes.byteLength);
            if (room === 0) throw new Refusal({ pointer: "", message: "there isn't enough memory for it" });
            rooms.push(room);
            new Uint8Array(this.#exports.memory.buffer).set(bytes, room);
            return room;
        };
        try {
            const addresses: { [name: string]: number } = {};
            for (const [name, view] of Object.entries(numbers))
                addresses[name] = put(new Uint8Array(view.buffer, view.byteOffset, view.byteLength));
            const text = new TextEncoder().encode(JSON.stringify({ ...request, ...addresses }));
            const refused = this.#exports.Call(put(text), text.byteLength) !== 0;
            const reply = JSON.parse(
                new TextDecoder().decode(this.#bytesAt(this.#exports.Reply(), this.#exports.ReplySize())),
            );
            if (refused) throw new Refusal(reply as Problem);
            if (typeof reply.numbers !== "number") return { value: reply };
            return { value: reply, numbers: this.#bytesAt(reply.numbers, reply.size).buffer };
        } finally {
            rooms.forEach((room) => this.#exports.Free(room));
        }
    }

    givePicture(name: string, picture: GivenPicture): void {
        const { width, height, pixels } = picture;
        const type =
            pixels instanceof Float32Array ? "float" : pixels instanceof Uint16Array ? "uint16" : "uint8";
        this.call({ call: "givePicture", name, width, height, type }, { pixels });
    }

    giveMesh(name: string, mesh: Mesh): void {
        const { positions, normals, uvs, indices } = mesh;
        const sizes = { vertices: positions.length / 3, indexCount: indices.length };
        this.call(
            { call: "giveMesh", name, ...sizes },
            { positions, indices, ...(normals.length > 0 && { normals }), ...(uvs.length > 0 && { uvs }) },
        );
    }

    /** A copy. */
    #bytesAt(address: number, size: number): Uint8Array<ArrayBuffer> {
        return new Uint8Array(this.#exports.memory.buffer.slice(address, address + size) as ArrayBuffer);
    }
}
