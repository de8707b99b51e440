// An engine worker with the pictures it has been given: it reads a picture again only when another size or
// another matte is wanted.
import { EngineClient } from './client';
import type { Fit } from './protocol';

interface Wanted {
    id: number;
    file: Blob;
    fit: Fit;
}

export class PictureRoom {
    readonly engine = new EngineClient();
    private readonly held = new Map<number, string>();

    /** Has these pictures and no others. */
    async hold(pictures: readonly Wanted[], matte: number): Promise<void> {
        for (const number of [...this.held.keys()].filter((id) => !pictures.some((one) => one.id === id))) {
            this.held.delete(number);
            await this.engine.ask('remove', { number });
        }
        for (const { id, file, fit } of pictures) {
            const key = JSON.stringify([matte, fit]);
            if (this.held.get(id) === key) continue;
            this.held.delete(id);
            await this.engine.ask('add', { number: id, bytes: await file.arrayBuffer(), matte, fit });
            this.held.set(id, key);
        }
    }
}
