// Files that people bring, as pictures that the engine reads. What it cannot read the browser may: then the
// engine gets it as a PNG.
import { PictureRoom } from '../engine/picture_room';
import type { Pixels } from '../engine/protocol';
import { thumbnailBox } from './project';

export interface ReadPicture {
    file: Blob;
    width: number;
    height: number;
    thumbnail: Blob;
    opaque: boolean;
}

export async function blobOf(pixels: Pixels, type = 'image/png'): Promise<Blob> {
    const canvas = new OffscreenCanvas(pixels.width, pixels.height);
    canvas.getContext('2d')?.putImageData(new ImageData(pixels.rgba, pixels.width, pixels.height), 0, 0);
    return canvas.convertToBlob({ type, quality: 0.85 });
}

/** The first picture of a file, decoded by the browser; rejects what it does not know either. */
async function asPng(file: Blob): Promise<Blob> {
    const bitmap = await createImageBitmap(file, { colorSpaceConversion: 'default' });
    const canvas = new OffscreenCanvas(bitmap.width, bitmap.height);
    canvas.getContext('2d')?.drawImage(bitmap, 0, 0);
    bitmap.close();
    return canvas.convertToBlob({ type: 'image/png' });
}

async function beginsWith(file: Blob): Promise<(...bytes: number[]) => boolean> {
    const head = new Uint8Array(await file.slice(0, 4).arrayBuffer());
    return (...bytes) => bytes.every((byte, index) => head[index] === byte);
}

/** Whether the file is of a kind that the engine reads: then its own reason why it cannot counts. */
async function isEnginesKind(file: Blob): Promise<boolean> {
    const starts = await beginsWith(file);
    return (
        starts(0x89, 0x50, 0x4e, 0x47) || starts(0xff, 0xd8) || starts(0x47, 0x49, 0x46) || starts(0x42, 0x4d)
    );
}

export class Importer {
    private room = new PictureRoom();
    private count = 0;
    private last: Promise<unknown> = Promise.resolve();

    /** One picture after the other, whoever brings them. Rejects with the reason in one line. */
    read(file: Blob): Promise<ReadPicture> {
        const read = this.last.then(() => this.readNow(file));
        this.last = read.catch(() => {});
        return read;
    }

    private async readNow(file: Blob): Promise<ReadPicture> {
        try {
            return await this.readByEngine(file);
        } catch (error) {
            if (await isEnginesKind(file)) throw error;
            return this.readByEngine(await asPng(file));
        }
    }

    private async readByEngine(file: Blob): Promise<ReadPicture> {
        // A large photo leaves memory behind that only a new worker gives back.
        if (++this.count % 20 === 0) {
            this.room.engine.end();
            this.room = new PictureRoom();
        }
        const fit = { mode: 'most', ...thumbnailBox } as const;
        const bytes = await file.arrayBuffer();
        const order = { number: 1, bytes, matte: 0xffffff, fit, show: true };
        const { width, height, shown } = await this.room.engine.ask('add', order);
        await this.room.engine.ask('remove', { number: 1 });
        if (shown === undefined) throw new Error('no pixels');
        const starts = await beginsWith(file);
        const opaque = starts(0xff, 0xd8) || starts(0x42, 0x4d);
        // Its own copy: what stands on the disk may be changed or go while the page is open.
        const kept = new Blob([bytes], { type: file.type });
        return { file: kept, width, height, opaque, thumbnail: await blobOf(shown, 'image/jpeg') };
    }
}
