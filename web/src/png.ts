// PNG of 8 or 16 bits a channel, RGBA, as other programs read it.

import type { Picture } from "./engine";

const kTable = Uint32Array.from({ length: 256 }, (_, byte) => {
    for (let bit = 0; bit < 8; ++bit) byte = byte & 1 ? 0xedb88320 ^ (byte >>> 1) : byte >>> 1;
    return byte;
});

function checksum(bytes: Uint8Array): number {
    let sum = 0xffffffff;
    for (const byte of bytes) sum = kTable[(sum ^ byte) & 0xff]! ^ (sum >>> 8);
    return ~sum >>> 0;
}

function chunk(kind: string, data: Uint8Array): Uint8Array<ArrayBuffer> {
    const bytes = new Uint8Array(12 + data.length);
    const view = new DataView(bytes.buffer);
    view.setUint32(0, data.length);
    for (let i = 0; i < 4; ++i) bytes[4 + i] = kind.charCodeAt(i);
    bytes.set(data, 8);
    view.setUint32(8 + data.length, checksum(bytes.subarray(4, 8 + data.length)));
    return bytes;
}

/** Rows behind the filter "up": what a pixel differs from the one above it. */
function filtered(picture: Picture<"rgba8"> | Picture<"rgba16">): Uint8Array<ArrayBuffer> {
    const wide = picture.format === "rgba16";
    const stride = picture.width * (wide ? 8 : 4);
    const rows = new Uint8Array(picture.height * (stride + 1));
    let last = new Uint8Array(stride);
    let row = new Uint8Array(stride);
    for (let y = 0; y < picture.height; ++y) {
        for (let i = 0; i < picture.width * 4; ++i) {
            const number = picture.pixels[y * picture.width * 4 + i]!;
            if (wide) {
                row[2 * i] = number >> 8;
                row[2 * i + 1] = number & 0xff;
            } else row[i] = number;
        }
        const start = y * (stride + 1);
        rows[start] = 2;
        for (let i = 0; i < stride; ++i) rows[start + 1 + i] = row[i]! - last[i]!;
        [row, last] = [last, row];
    }
    return rows;
}

export async function encodePng(picture: Picture<"rgba8"> | Picture<"rgba16">): Promise<Blob> {
    const header = new Uint8Array(13);
    const view = new DataView(header.buffer);
    view.setUint32(0, picture.width);
    view.setUint32(4, picture.height);
    header.set([picture.format === "rgba16" ? 16 : 8, 6, 0, 0, 0], 8);
    const packed = new Blob([filtered(picture)]).stream().pipeThrough(new CompressionStream("deflate"));
    const data = new Uint8Array(await new Response(packed).arrayBuffer());
    const signature = new Uint8Array([0x89, 0x50, 0x4e, 0x47, 13, 10, 26, 10]);
    return new Blob(
        [
            signature,
            chunk("IHDR", header),
            chunk("sRGB", new Uint8Array([0])),
            chunk("IDAT", data),
            chunk("IEND", new Uint8Array()),
        ],
        { type: "image/png" },
    );
}
