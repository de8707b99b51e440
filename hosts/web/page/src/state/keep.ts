// The project in the browser's own store, so that it is there again after a reload; and as one file.
import type { Picture, Project } from './project';

const databaseName = 'lumafold';

function asPromise<T>(request: IDBRequest<T>): Promise<T> {
    return new Promise((resolve, reject) => {
        request.onsuccess = () => resolve(request.result);
        request.onerror = () => reject(request.error);
    });
}

/** Rejects also where the browser keeps nothing for a page of this address. */
async function open(): Promise<IDBDatabase> {
    const request = indexedDB.open(databaseName, 1);
    request.onupgradeneeded = () => {
        request.result.createObjectStore('pictures', { keyPath: 'id' });
        request.result.createObjectStore('project');
    };
    return asPromise(request);
}

function finished(writing: IDBTransaction): Promise<void> {
    return new Promise((resolve, reject) => {
        writing.oncomplete = () => resolve();
        writing.onabort = () => reject(writing.error);
    });
}

/** Of a picture, with the types of both. */
interface Files {
    id: number;
    file: Blob | ArrayBuffer;
    thumbnail: Blob | ArrayBuffer;
    types: [string, string];
}
/** All but the files. */
type Kept = Omit<Project, 'pictures'> & { pictures: Omit<Picture, 'file' | 'thumbnail'>[] };

function withoutFiles(project: Project): Kept {
    const pictures = project.pictures.map(({ file: _file, thumbnail: _thumbnail, ...rest }) => rest);
    return { ...project, pictures };
}

/** What was changed since the save of that number. A page has the time to write this while it goes. */
interface Note {
    since: number | undefined;
    project: Kept;
}

const settleMilliseconds = 300;

/** Files are written once, the small rest at every change. Pages in several tabs share the store: what is there
 *  is asked for every time, and the last that writes is the one whose project stays. */
export class Keeper {
    private readonly database = open();
    private opened: IDBDatabase | undefined;
    private saving = Promise.resolve();
    private timer: ReturnType<typeof setTimeout> | undefined;
    private unsaved: Project | undefined;
    private takesBlobs = true;
    /** The number of the last save that this page has read or made. */
    private saved: number | undefined;

    constructor() {
        for (const name of ['pagehide', 'visibilitychange']) addEventListener(name, () => this.note());
    }

    async load(): Promise<Project | null> {
        this.opened = await this.database;
        const reading = this.opened.transaction(['project', 'pictures']);
        const get = (key: string): Promise<unknown> => asPromise(reading.objectStore('project').get(key));
        const current = (await get('current')) as Kept | undefined;
        const note = (await get('note')) as Note | undefined;
        this.saved = (await get('saved')) as number | undefined;
        const kept = note !== undefined && note.since === this.saved ? note.project : current;
        if (kept === undefined) return null;
        const files = (await asPromise(reading.objectStore('pictures').getAll())) as Files[];
        const pictures = kept.pictures.flatMap((picture): Picture[] => {
            const found = files.find((file) => file.id === picture.id);
            if (found === undefined) return [];
            const [file, thumbnail] = [found.file, found.thumbnail].map(
                (bytes, index) => new Blob([bytes], { type: found.types[index]! }),
            ) as [Blob, Blob];
            return [{ ...picture, file, thumbnail }];
        });
        return { ...kept, pictures };
    }

    /** Saves the project when its changes pause, one after the other, so that the last one stays. */
    keep(project: Project, failed: () => void): void {
        this.unsaved = project;
        clearTimeout(this.timer);
        this.timer = setTimeout(() => {
            this.saving = this.saving.then(() => this.write(project)).catch(failed);
        }, settleMilliseconds);
    }

    /** Committed at once: nothing of this page runs after it. */
    private note(): void {
        if (this.unsaved === undefined || this.opened === undefined) return;
        const note: Note = { since: this.saved, project: withoutFiles(this.unsaved) };
        const writing = this.opened.transaction('project', 'readwrite');
        writing.objectStore('project').put(note, 'note');
        writing.commit();
    }

    private async write(project: Project): Promise<void> {
        const database = await this.database;
        for (;;) {
            const missing = await this.writeRest(database, project);
            if (missing.length === 0) return;
            for (const picture of missing) await this.writeFiles(database, picture);
        }
    }

    /** The browser writes files without a copy in the page, which would stall it; not every one does. */
    private async writeFiles(database: IDBDatabase, { id, file, thumbnail }: Picture): Promise<void> {
        const put = (one: Blob | ArrayBuffer, other: Blob | ArrayBuffer): Promise<void> => {
            const files: Files = { id, file: one, thumbnail: other, types: [file.type, thumbnail.type] };
            const writing = database.transaction('pictures', 'readwrite');
            writing.objectStore('pictures').put(files);
            return finished(writing);
        };
        if (this.takesBlobs) {
            try {
                return await put(file, thumbnail);
            } catch {
                this.takesBlobs = false;
            }
        }
        return put(await file.arrayBuffer(), await thumbnail.arrayBuffer());
    }

    /** All but files, unless some of them are not there: these are returned, and nothing is written. */
    private async writeRest(database: IDBDatabase, project: Project): Promise<Picture[]> {
        const writing = database.transaction(['project', 'pictures'], 'readwrite');
        const files = writing.objectStore('pictures');
        const there = new Set(await asPromise(files.getAllKeys()));
        const missing = project.pictures.filter(({ id }) => !there.has(id));
        if (missing.length === 0) {
            for (const { id } of project.pictures) there.delete(id);
            for (const id of there) files.delete(id);
            const rest = writing.objectStore('project');
            rest.put(withoutFiles(project), 'current');
            rest.put((this.saved = Math.random()), 'saved');
            rest.delete('note');
            writing.commit();
            if (this.unsaved === project) this.unsaved = undefined;
        }
        await finished(writing);
        return missing;
    }
}

const signature = 'LUMAFOLD PROJECT 1\n';

/** Signature, one line of JSON, then each picture's file and thumbnail with nothing between. */
export function projectFile(project: Project): Blob {
    const sizes = project.pictures.map(({ file, thumbnail }) => [
        file.size,
        thumbnail.size,
        file.type,
        thumbnail.type,
    ]);
    const head = JSON.stringify({ project: withoutFiles(project), sizes });
    const files = project.pictures.flatMap(({ file, thumbnail }) => [file, thumbnail]);
    return new Blob([signature, head, '\n', ...files], { type: 'application/octet-stream' });
}

/** Null for a file that is none of these. What is read needs the file on the disk no longer. */
export async function readProjectFile(onDisk: Blob): Promise<Project | null> {
    if ((await onDisk.slice(0, signature.length).text()) !== signature) return null;
    const file = new Blob([await onDisk.arrayBuffer()]);
    const start = await file.slice(signature.length, signature.length + (1 << 20)).text();
    const end = start.indexOf('\n');
    const { project, sizes } = JSON.parse(start.slice(0, end)) as {
        project: Kept;
        sizes: [number, number, string, string][];
    };
    let offset = signature.length + new TextEncoder().encode(start.slice(0, end + 1)).length;
    const next = (size: number, type: string): Blob => file.slice(offset, (offset += size), type);
    const pictures = project.pictures.map((picture, index) => {
        const [fileSize, thumbnailSize, fileType, thumbnailType] = sizes[index] ?? [0, 0, '', ''];
        return { ...picture, file: next(fileSize, fileType), thumbnail: next(thumbnailSize, thumbnailType) };
    });
    if (offset !== file.size) throw new Error('the file is cut off');
    return { ...project, pictures };
}
