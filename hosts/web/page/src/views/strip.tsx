// The pictures in order with a gap behind each, to be sorted by mouse, touch and keyboard.
import { useEffect, useMemo, useRef } from 'preact/hooks';
import Sortable from 'sortablejs';
import type { Picture } from '../state/project';
import { texts } from '../texts';
import { ChooseFiles } from './choose_files';
import { useApp, useAppState } from './context';
import { focusNext } from './focus';
import { Icon } from './icons';

function useObjectUrl(blob: Blob): string {
    const url = useMemo(() => URL.createObjectURL(blob), [blob]);
    useEffect(() => () => URL.revokeObjectURL(url), [url]);
    return url;
}

/** The sorting library moves elements itself; they are put back, and the order is changed in the project. */
function useSorting() {
    const app = useApp();
    const list = useRef<HTMLUListElement>(null);
    useEffect(() => {
        const element = list.current;
        if (element === null) return;
        const sorting = Sortable.create(element, {
            handle: '.picture',
            draggable: '.entry',
            animation: matchMedia('(prefers-reduced-motion: reduce)').matches ? 0 : 150,
            // By pointer in every browser: their own dragging differs, and takes pictures for files.
            forceFallback: true,
            fallbackTolerance: 4,
            delay: 150,
            delayOnTouchOnly: true,
            ghostClass: 'dragged',
            onEnd({ item, oldDraggableIndex: from, newDraggableIndex: to }) {
                if (from === undefined || to === undefined || from === to) return;
                item.remove();
                element.insertBefore(item, element.children[from] ?? null);
                app.movePicture(from, to);
            },
        });
        return () => sorting.destroy();
    }, [app]);
    return list;
}

function PictureCard({ picture, index, count }: { picture: Picture; index: number; count: number }) {
    const app = useApp();
    const url = useObjectUrl(picture.thumbnail);
    const size = texts.pixels(picture.width, picture.height);
    const move = (to: number): void => {
        app.movePicture(index, to);
        // The card keeps its element, which the browser takes the focus from while it is moved.
        focusNext(`#picture-${picture.id}`);
    };
    const remove = (): void => {
        app.removePicture(picture.id);
        // The one that takes its place, or the last.
        const place = Math.min(index + 1, count - 1);
        focusNext(`.entry:nth-child(${place}) .picture`, '.drop-zone button');
    };
    const onKey = (event: KeyboardEvent): void => {
        if (event.key === 'Delete') remove();
        if (!event.altKey || (event.key !== 'ArrowLeft' && event.key !== 'ArrowRight')) return;
        event.preventDefault();
        move(Math.max(0, Math.min(count - 1, index + (event.key === 'ArrowLeft' ? -1 : 1))));
    };
    return (
        <div class="card">
            <button
                id={`picture-${picture.id}`}
                class="picture"
                aria-label={texts.pictureName(index + 1, count, picture.name, size)}
                title={`${picture.name}, ${size}`}
                onKeyDown={onKey}
                onClick={() => app.selectGap(picture.id)}
            >
                <img src={url} alt="" draggable={false} />
                <span class="place" aria-hidden="true">
                    {index + 1}
                </span>
            </button>
            <div class="card-tools">
                <button
                    class="tool"
                    aria-label={texts.earlier(picture.name)}
                    disabled={index === 0}
                    onClick={() => move(index - 1)}
                >
                    <Icon name="left" />
                </button>
                <button
                    class="tool"
                    aria-label={texts.later(picture.name)}
                    disabled={index === count - 1}
                    onClick={() => move(index + 1)}
                >
                    <Icon name="right" />
                </button>
                <button class="tool" aria-label={texts.remove(picture.name)} onClick={remove}>
                    <Icon name="close" />
                </button>
            </div>
        </div>
    );
}

function GapButton({ picture, next, last }: { picture: Picture; next: Picture; last: boolean }) {
    const app = useApp();
    const selected = useAppState(
        (state) => state.selected === picture.id && state.workspace === 'transition',
    );
    const name = app.transitionName(picture.gap.transition);
    return (
        <button
            class="gap"
            aria-pressed={selected}
            aria-label={texts.gapName(picture.name, next.name, name)}
            onClick={() => app.selectGap(picture.id)}
        >
            <Icon name={last ? 'loop' : 'right'} />
            <span>{name}</span>
        </button>
    );
}

export function Strip() {
    const app = useApp();
    const pictures = useAppState((state) => state.project.pictures);
    const reading = useAppState((state) => state.reading);
    const list = useSorting();
    const first = pictures[0];
    if (first === undefined) return null;
    return (
        <section class="strip" aria-label={texts.pictures}>
            <ul ref={list} class="entries" aria-describedby="strip-help">
                {pictures.map((picture, index) => (
                    <li key={picture.id} class="entry">
                        <PictureCard picture={picture} index={index} count={pictures.length} />
                        <GapButton
                            picture={picture}
                            next={pictures[index + 1] ?? first}
                            last={index === pictures.length - 1}
                        />
                    </li>
                ))}
            </ul>
            <div class="strip-end">
                {reading > 0 ? (
                    <p class="hint" role="status">
                        {texts.reading(reading)}
                    </p>
                ) : (
                    <ChooseFiles
                        class="add-card"
                        multiple
                        label={texts.add}
                        onFiles={(files) => void app.addFiles(files)}
                    >
                        <Icon name="add" />
                    </ChooseFiles>
                )}
            </div>
            <p id="strip-help" class="for-readers">
                {texts.picturesHelp}
            </p>
        </section>
    );
}
