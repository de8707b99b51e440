// Gaps played small, rendered by the engine one after the other: what is asked for last and matters most
// comes first, and what nobody waits for any more is never rendered.
import { PictureRoom } from '../engine/picture_room';
import type { Entry, Pixels } from '../engine/protocol';
import { boxFactor, buildOrder, entryOf, heldPictures, nextPicture, valueOf } from './project';
import type { Picture, Project, Size } from './project';

export interface Film {
    frames: Pixels[];
    /** Hundredths of a second. */
    delays: number[];
}

export interface PreviewWish {
    project: Project;
    /** The picture before the gap. */
    picture: Picture;
    transition: number;
    box: Size;
    /** Higher ones come first. */
    rank: number;
    /** Still pictures are seen no longer than this, in hundredths of a second. */
    longestPause: number;
}

interface Job {
    wish: PreviewWish;
    key: string;
    show(film: Film): void;
    fail(error: Error): void;
}

const mostKept = 80;

function keyOf({ project, picture, transition, box, longestPause }: PreviewWish): string {
    const read = project.settings;
    const next = nextPicture(project, picture.id);
    const { canvas } = project;
    const places = [
        picture.id,
        next?.id,
        transition,
        box.width,
        longestPause,
        canvas.mode,
        canvas.width,
        canvas.height,
    ];
    return JSON.stringify([...places, picture.gap.pause, picture.gap.delay, read]);
}

export class Previews {
    private readonly jobs = new Set<Job>();
    private readonly kept = new Map<string, Film>();
    private busy = false;
    private readonly rooms = new Map<number, PictureRoom>();

    constructor(private readonly noTransition: number) {}

    /** Calls back at once when the film is there already. The function returned gives the wish up. */
    want(wish: PreviewWish, show: (film: Film) => void, fail: (error: Error) => void): () => void {
        const key = keyOf(wish);
        const known = this.kept.get(key);
        if (known !== undefined) {
            show(known);
            return () => {};
        }
        const job: Job = { wish, key, show, fail };
        this.jobs.add(job);
        void this.work();
        return () => this.jobs.delete(job);
    }

    private async work(): Promise<void> {
        if (this.busy) return;
        this.busy = true;
        try {
            // The wishes of one turn of the page are weighed against each other.
            await Promise.resolve();
            for (let job = this.foremost(); job !== undefined; job = this.foremost()) await this.serve(job);
        } finally {
            this.busy = false;
        }
    }

    private foremost(): Job | undefined {
        let best: Job | undefined;
        for (const job of this.jobs) {
            if (best === undefined || job.wish.rank > best.wish.rank) best = job;
        }
        return best;
    }

    private async serve(job: Job): Promise<void> {
        try {
            const film = this.kept.get(job.key) ?? (await this.render(job.wish));
            this.keep(job.key, film);
            if (this.jobs.delete(job)) job.show(film);
        } catch (error) {
            // A worker that ran out of memory is of no more use; the next film gets a new one.
            this.rooms.get(job.wish.box.width)?.engine.end();
            this.rooms.delete(job.wish.box.width);
            if (this.jobs.delete(job)) job.fail(error as Error);
        }
    }

    private keep(key: string, film: Film): void {
        this.kept.delete(key);
        this.kept.set(key, film);
        for (const oldest of this.kept.keys()) {
            if (this.kept.size <= mostKept) break;
            this.kept.delete(oldest);
        }
    }

    private async render({ project, picture, transition, box, longestPause }: PreviewWish): Promise<Film> {
        const next = nextPicture(project, picture.id) ?? picture;
        const room = this.roomFor(box);
        const factor = boxFactor(project, box);
        const pictures = next.id === picture.id ? [picture] : [picture, next];
        await room.hold(heldPictures(project, pictures, factor), valueOf(project, 'TransitionMattcolour'));
        const first: Entry = {
            ...entryOf(picture),
            transition,
            pause: Math.min(picture.gap.pause, longestPause),
        };
        const entries = [first, { ...first, picture: next.id, transition: this.noTransition }];
        const order = buildOrder(project, pictures.length === 1 ? [first] : entries, factor);
        const built = await room.engine.ask('build', { ...order, fullColour: true });
        const { frames } = await room.engine.ask('frames', {});
        return { frames, delays: built.delays };
    }

    /** Films of one size share a worker, so that each picture is read once for it. */
    private roomFor(box: Size): PictureRoom {
        const room = this.rooms.get(box.width) ?? new PictureRoom();
        this.rooms.set(box.width, room);
        return room;
    }
}
