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

/** The first picture of a file, decoded by the browser. It reads no more of other files than their beginning,
 *  and rejects them. */
async function asPng(file: Blob): Promise<Blob> {
    const image = new Image();
    image.src = URL.createObjectURL(file);
    try {
        await image.decode();
        const { naturalWidth: width, naturalHeight: height } = image;
        const canvas = new OffscreenCanvas(width, height);
        canvas.getContext('2d')?.drawImage(image, 0, 0, width, height);
        return await canvas.convertToBlob({ type: 'image/png' });
    } finally {
        URL.revokeObjectURL(image.src);
    }
}

/** What files that the engine reads begin with: its own reason why it cannot read one of them counts. */
const enginesKind = /^(\x89PNG|\xff\xd8|GIF|BM|RIFF.{4}WEBP)/s;
const opaqueKind = /^(\xff\xd8|BM)/;

/** The first bytes of a file, each as a letter. */
const beginning = async (file: Blob): Promise<string> =>
    String.fromCharCode(...new Uint8Array(await file.slice(0, 12).arrayBuffer()));

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
        return this.readByEngine(enginesKind.test(await beginning(file)) ? file : await asPng(file));
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
        const opaque = opaqueKind.test(await beginning(file));
        // Its own copy: what stands on the disk may be changed or go while the page is open.
        const kept = new Blob([bytes], { type: file.type });
        return { file: kept, width, height, opaque, thumbnail: await blobOf(shown, 'image/jpeg') };
    }
}
