// What the tests read beside the engine: pictures, models, and what the command makes.

import { execFile } from "node:child_process";
import { readFile } from "node:fs/promises";
import { promisify } from "node:util";
import { inflateSync } from "node:zlib";
import { kRoot } from "./engine-setup.mjs";

const kCommand = process.env.FERNWICK ?? `${kRoot}build/release/tools/fernwick`;

/** Undoes the filter of a row (w3.org/TR/png-3, 9.2). */
function unfilter(filter, row, above, unit) {
    for (let i = 0; i < row.length; ++i) {
        const left = i >= unit ? row[i - unit] : 0;
        const up = above[i];
        const corner = i >= unit ? above[i - unit] : 0;
        const guess = left + up - corner;
        const [toLeft, toUp, toCorner] = [left, up, corner].map((other) => Math.abs(guess - other));
        const paeth = toLeft <= toUp && toLeft <= toCorner ? left : toUp <= toCorner ? up : corner;
        row[i] += [0, left, up, (left + up) >> 1, paeth][filter];
    }
}

/** Decodes a PNG of 8 or 16 bits without interlacing or palette into four numbers a pixel. */
export function decode(png) {
    let head;
    const packed = [];
    for (let at = 8; at < png.length;) {
        const size = png.readUInt32BE(at);
        const type = png.toString("latin1", at + 4, at + 8);
        const data = png.subarray(at + 8, at + 8 + size);
        if (type === "IHDR") head = data;
        if (type === "IDAT") packed.push(data);
        at += size + 12;
    }
    const [width, height] = [head.readUInt32BE(0), head.readUInt32BE(4)];
    const channels = { 0: 1, 2: 3, 4: 2, 6: 4 }[head[9]];
    const bytes = head[8] / 8;
    const unit = channels * bytes;
    const rows = inflateSync(Buffer.concat(packed));
    const pixels = bytes === 1 ? new Uint8Array(4 * width * height) : new Uint16Array(4 * width * height);
    let above = Buffer.alloc(width * unit);
    for (let y = 0; y < height; ++y) {
        const start = y * (width * unit + 1);
        const row = rows.subarray(start + 1, start + 1 + width * unit);
        unfilter(rows[start], row, above, unit);
        above = row;
        const number = (i) => (bytes === 1 ? row[i] : row.readUInt16BE(2 * i));
        for (let x = 0; x < width; ++x)
            for (let c = 0; c < 4; ++c) {
                const isGrey = channels < 3;
                const own = c === 3 ? (channels % 2 === 0 ? channels - 1 : -1) : isGrey ? 0 : c;
                pixels[4 * (y * width + x) + c] = own < 0 ? 2 ** (8 * bytes) - 1 : number(x * channels + own);
            }
    }
    return { width, height, pixels };
}

export const readPicture = async (file) => decode(await readFile(file));

/** What the command writes as a PNG to stdout. */
export async function native(command, ...options) {
    const limits = { encoding: "buffer", maxBuffer: 1 << 28 };
    const { stdout } = await promisify(execFile)(kCommand, [command, ...options, "-o", "-"], limits);
    return decode(stdout);
}

/** The one mesh of an OBJ file with normals and UV, its polygons cut into fans. */
export async function readObj(file) {
    const lists = { v: [], vt: [], vn: [] };
    const vertices = new Map();
    const mesh = { positions: [], normals: [], uvs: [], indices: [] };
    const vertexOf = (corner) => {
        if (!vertices.has(corner)) {
            const [point, uv, normal] = corner.split("/").map((number) => Number(number) - 1);
            mesh.positions.push(...lists.v[point]);
            mesh.uvs.push(...lists.vt[uv]);
            mesh.normals.push(...lists.vn[normal]);
            vertices.set(corner, vertices.size);
        }
        return vertices.get(corner);
    };
    for (const line of (await readFile(file, "utf8")).split("\n")) {
        const [kind, ...words] = line.trim().split(/\s+/);
        if (kind in lists) lists[kind].push(words.map(Number));
        if (kind === "f") {
            const [first, ...others] = words.map(vertexOf);
            for (let i = 1; i < others.length; ++i) mesh.indices.push(first, others[i - 1], others[i]);
        }
    }
    const { positions, normals, uvs, indices } = mesh;
    const floats = [positions, normals, uvs].map((numbers) => new Float32Array(numbers));
    return { positions: floats[0], normals: floats[1], uvs: floats[2], indices: new Uint32Array(indices) };
}

/** The greatest difference of two pictures' numbers, in steps of their integers; of pixels that both hide none. */
export function difference(left, right) {
    let most = 0;
    let several = 0; // numbers that differ by more than a step
    for (let i = 0; i < left.pixels.length; ++i) {
        const alpha = i | 3;
        if (left.pixels[alpha] === 0 && right.pixels[alpha] === 0) continue;
        const apart = Math.abs(left.pixels[i] - right.pixels[i]);
        most = Math.max(most, apart);
        several += apart > 1 ? 1 : 0;
    }
    return { most, several };
}
