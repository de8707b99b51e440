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

type Bytes = { id: number; file: ArrayBuffer; thumbnail: ArrayBuffer; types: [string, string] };
type Kept = Omit<Project, 'pictures'> & { pictures: Omit<Picture, 'file' | 'thumbnail'>[] };

function withoutFiles(project: Project): Kept {
    const pictures = project.pictures.map(({ file: _file, thumbnail: _thumbnail, ...rest }) => rest);
    return { ...project, pictures };
}

/** Files are written once, the small rest at every change. */
export class Keeper {
    private readonly database = open();
    private readonly stored = new Set<number>();

    async load(): Promise<Project | null> {
        const reading = (await this.database).transaction(['project', 'pictures']);
        const kept = (await asPromise(reading.objectStore('project').get('current'))) as Kept | undefined;
        if (kept === undefined) return null;
        const files = (await asPromise(reading.objectStore('pictures').getAll())) as Bytes[];
        const pictures: Picture[] = [];
        for (const picture of kept.pictures) {
            const found = files.find((file) => file.id === picture.id);
            if (found === undefined) continue;
            this.stored.add(picture.id);
            const file = new Blob([found.file], { type: found.types[0] });
            pictures.push({
                ...picture,
                file,
                thumbnail: new Blob([found.thumbnail], { type: found.types[1] }),
            });
        }
        return { ...kept, pictures };
    }

    async save(project: Project): Promise<void> {
        const added = project.pictures.filter((picture) => !this.stored.has(picture.id));
        const bytes = await Promise.all(added.map(bytesOf));
        const writing = (await this.database).transaction(['project', 'pictures'], 'readwrite');
        const files = writing.objectStore('pictures');
        for (const one of bytes) files.put(one);
        for (const id of this.stored) {
            if (!project.pictures.some((picture) => picture.id === id)) files.delete(id);
        }
        writing.objectStore('project').put(withoutFiles(project), 'current');
        await new Promise<void>((resolve, reject) => {
            writing.oncomplete = () => resolve();
            writing.onabort = () => reject(writing.error);
        });
        this.stored.clear();
        for (const picture of project.pictures) this.stored.add(picture.id);
    }
}

async function bytesOf(picture: Picture): Promise<Bytes> {
    const { id, file, thumbnail } = picture;
    const [fileBytes, thumbnailBytes] = await Promise.all([file.arrayBuffer(), thumbnail.arrayBuffer()]);
    return { id, file: fileBytes, thumbnail: thumbnailBytes, types: [file.type, thumbnail.type] };
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

/** Null for a file that is none of these. */
export async function readProjectFile(file: Blob): Promise<Project | null> {
    if ((await file.slice(0, signature.length).text()) !== signature) return null;
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
