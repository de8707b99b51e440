// Files that people bring, as pictures that the engine reads. What it cannot read the browser may: then the
// engine gets it as a PNG.
import { PictureRoom } from '../engine/picture_room';
import type { ReadPicture } from '../engine/protocol';
import { texts } from '../texts';
import { thumbnailBox } from './project';

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
const heicKind = /^.{4}ftyp(hei|hev|mif1|msf1)/s;

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
        const begins = await beginning(file);
        if (enginesKind.test(begins)) return this.readByEngine(file);
        const png = await asPng(file).catch(() => {
            throw new Error(heicKind.test(begins) ? texts.noHeic : texts.unknownKind);
        });
        return this.readByEngine(png);
    }

    private async readByEngine(file: Blob): Promise<ReadPicture> {
        // A large photo leaves memory behind that only a new worker gives back.
        if (++this.count % 20 === 0) {
            this.room.engine.end();
            this.room = new PictureRoom();
        }
        // The page reads it: where it is opened from a file, workers of some browsers cannot.
        const bytes = await file.arrayBuffer();
        return this.room.engine.ask('read', { bytes, type: file.type, box: thumbnailBox });
    }
}
