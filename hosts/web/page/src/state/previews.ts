// Gaps played small, rendered by the engine. Films of one size are rendered one after the other by a worker of
// their own, so that none waits for films of another size; what nobody waits for any more is never rendered.
import { PictureRoom } from '../engine/picture_room';
import type { Entry, Pixels, Size, Transition } from '../engine/protocol';
import { boxFactor, buildOrder, entryOf, heldPictures, nextPicture, valueOf } from './project';
import type { Picture, Project } from './project';

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
    /** Still pictures are seen no longer than this, in hundredths of a second. */
    longestPause: number;
}

interface Job {
    wish: PreviewWish;
    key: string;
    show(film: Film): void;
    fail(error: Error): void;
}

/** Films of one size: their worker holds each picture in that size once. */
interface Line {
    room: PictureRoom;
    jobs: Set<Job>;
    busy: boolean;
}

/** Of all films together. */
const mostBytesKept = 200e6;
/** About as many as an eye tells apart in a film of a few seconds. */
const mostFrames = 150;

/** Which frames a film shows, and for how long each. Of very many, some stand for the few that follow them; a
 *  still picture, which is seen longer, is always shown. */
function shownFrames(delays: readonly number[]): { indices: number[]; delays: number[] } {
    const total = delays.reduce((sum, delay) => sum + delay, 0);
    const longest = delays.length > mostFrames ? total / mostFrames : 0;
    const indices: number[] = [];
    const sums: number[] = [];
    for (const [index, delay] of delays.entries()) {
        const sum = (sums.at(-1) ?? Infinity) + delay;
        if (sum <= longest) sums[sums.length - 1] = sum;
        else {
            indices.push(index);
            sums.push(delay);
        }
    }
    return { indices, delays: sums };
}

const bytesOf = ({ frames }: Film): number => frames.length * (frames[0]?.rgba.length ?? 0);

export class Previews {
    private readonly kept = new Map<string, Film>();
    /** By the width of their boxes. */
    private readonly lines = new Map<number, Line>();
    private readonly noTransition: number;

    constructor(private readonly transitions: readonly Transition[]) {
        this.noTransition = transitions.findIndex(({ name }) => name === 'None');
    }

    /** Calls back at once when the film is there already. The function returned gives the wish up. */
    want(wish: PreviewWish, show: (film: Film) => void, fail: (error: Error) => void): () => void {
        const key = this.keyOf(wish);
        const known = this.kept.get(key);
        if (known !== undefined) {
            this.keep(key, known);
            show(known);
            return () => {};
        }
        const line = this.lines.get(wish.box.width) ?? {
            room: new PictureRoom(),
            jobs: new Set(),
            busy: false,
        };
        this.lines.set(wish.box.width, line);
        const job: Job = { wish, key, show, fail };
        line.jobs.add(job);
        void this.work(line);
        return () => line.jobs.delete(job);
    }

    /** Tells films apart by all that they are made of. */
    private keyOf({ project, picture, transition, box, longestPause }: PreviewWish): string {
        const read = ['TransitionMattcolour', ...(this.transitions[transition]?.settings ?? [])];
        return JSON.stringify([
            picture.id,
            nextPicture(project, picture.id)?.id,
            transition,
            box.width,
            boxFactor(project, box),
            longestPause,
            project.canvas,
            picture.gap.pause,
            picture.gap.delay,
            read.map((key) => project.settings[key]),
        ]);
    }

    private async work(line: Line): Promise<void> {
        if (line.busy) return;
        line.busy = true;
        // Those that are added meanwhile are served, too.
        for (const job of line.jobs) await this.serve(line, job);
        line.busy = false;
    }

    private async serve(line: Line, job: Job): Promise<void> {
        try {
            const film = this.kept.get(job.key) ?? (await this.render(line.room, job.wish));
            this.keep(job.key, film);
            if (line.jobs.delete(job)) job.show(film);
        } catch (error) {
            // A worker that ran out of memory is of no more use; the next film gets a new one.
            line.room.engine.end();
            line.room = new PictureRoom();
            if (line.jobs.delete(job)) job.fail(error as Error);
        }
    }

    private keep(key: string, film: Film): void {
        this.kept.delete(key);
        this.kept.set(key, film);
        let bytes = 0;
        for (const one of this.kept.values()) bytes += bytesOf(one);
        for (const [oldest, one] of this.kept) {
            if (bytes <= mostBytesKept) break;
            this.kept.delete(oldest);
            bytes -= bytesOf(one);
        }
    }

    private async render(room: PictureRoom, wish: PreviewWish): Promise<Film> {
        const { project, picture, transition, box, longestPause } = wish;
        const next = nextPicture(project, picture.id) ?? picture;
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
        const { indices, delays } = shownFrames(built.delays);
        const { frames } = await room.engine.ask('frames', { indices });
        return { frames, delays };
    }
}
