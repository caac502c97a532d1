// Reads the PNGs that the command and the page write: 8 or 16 bits, with or without colour and alpha.

import { inflateSync } from "node:zlib";

function paeth(left, up, corner) {
    const toLeft = Math.abs(up - corner);
    const toUp = Math.abs(left - corner);
    const toCorner = Math.abs(left + up - 2 * corner);
    return toLeft <= toUp && toLeft <= toCorner ? left : toUp <= toCorner ? up : corner;
}

/** RGBA, a number a channel, as the file has them. */
export function decodePng(bytes) {
    const width = bytes.readUInt32BE(16);
    const height = bytes.readUInt32BE(20);
    const bits = bytes[24];
    const channels = { 0: 1, 2: 3, 4: 2, 6: 4 }[bytes[25]];
    const packed = [];
    for (let at = 8; at < bytes.length; at += 12 + bytes.readUInt32BE(at))
        if (bytes.toString("latin1", at + 4, at + 8) === "IDAT")
            packed.push(bytes.subarray(at + 8, at + 8 + bytes.readUInt32BE(at)));
    const rows = inflateSync(Buffer.concat(packed));
    const pixel = (channels * bits) / 8;
    const stride = width * pixel;
    const data = Buffer.alloc(height * stride);
    for (let y = 0; y < height; ++y)
        for (let x = 0; x < stride; ++x) {
            const left = x >= pixel ? data[y * stride + x - pixel] : 0;
            const up = y > 0 ? data[(y - 1) * stride + x] : 0;
            const corner = x >= pixel && y > 0 ? data[(y - 1) * stride + x - pixel] : 0;
            const guess = [0, left, up, (left + up) >> 1, paeth(left, up, corner)][rows[y * (stride + 1)]];
            data[y * stride + x] = rows[y * (stride + 1) + 1 + x] + guess;
        }
    const most = 2 ** bits - 1;
    const number = (i) => (bits === 16 ? data.readUInt16BE(2 * i) : data[i]);
    const pixels = new Uint16Array(width * height * 4);
    for (let i = 0; i < width * height; ++i) {
        const of = (channel) => number(i * channels + channel);
        const grey = channels < 3;
        pixels.set(
            [of(0), of(grey ? 0 : 1), of(grey ? 0 : 2), channels % 2 === 0 ? of(channels - 1) : most],
            4 * i,
        );
    }
    return { width, height, bits, pixels };
}
