// One gap: its transition played large beside the settings that it reads, and all others to choose from, each
// playing this very gap.
import { useEffect, useId, useState } from 'preact/hooks';
import type { Size } from '../engine/protocol';
import { largestSeed, nextPicture } from '../state/project';
import type { Picture } from '../state/project';
import type { Film } from '../state/previews';
import { texts } from '../texts';
import { useApp, useAppState, useProject } from './context';
import { FilmView, prefersStillness } from './film';
import { Icon } from './icons';
import { NumberField } from './number_field';
import { SettingControl } from './setting_control';

interface Look {
    box: Size;
    /** Milliseconds that a change has to rest before it is rendered. */
    wait: number;
    longestPause: number;
}

const tileLook: Look = { box: { width: 120, height: 90 }, wait: 60, longestPause: 30 };
/** The quick one answers while a slider moves; the sharp one follows when it rests. */
const quickLook: Look = { box: { width: 160, height: 120 }, wait: 0, longestPause: 70 };
const sharpLook: Look = { ...quickLook, box: { width: 400, height: 300 }, wait: 200 };

/** Null before there is one. */
type MaybeFilm = Film | 'failed' | null;

/** The film of a gap, the last one while a new one is made. */
function useFilm(picture: Picture, transition: number, look: Look): MaybeFilm {
    const app = useApp();
    const project = useProject();
    const [film, setFilm] = useState<MaybeFilm>(null);
    useEffect(() => {
        let giveUp = (): void => {};
        const wish = (): void => {
            const wanted = { project, picture, transition, ...look };
            giveUp = app.previews.want(wanted, setFilm, () => setFilm('failed'));
        };
        const timer = look.wait > 0 ? setTimeout(wish, look.wait) : (wish(), undefined);
        return () => {
            clearTimeout(timer);
            giveUp();
        };
    }, [app, project.settings, project.canvas, project.pictures, picture, transition, look]);
    return film;
}

function FilmPlace({ film, playing, label }: { film: MaybeFilm; playing: boolean; label?: string }) {
    if (film === null) return <div class="film waiting" />;
    if (film === 'failed') return <div class="film failed">{texts.noPreview}</div>;
    return <FilmView film={film} playing={playing} {...(label === undefined ? {} : { label })} />;
}

function LargePreview({ picture }: { picture: Picture }) {
    const app = useApp();
    const [playing, setPlaying] = useState(!prefersStillness());
    const { transition } = picture.gap;
    const quick = useFilm(picture, transition, quickLook);
    const sharp = useFilm(picture, transition, sharpLook);
    const [film, setFilm] = useState<MaybeFilm>(null);
    useEffect(() => setFilm(quick), [quick]);
    useEffect(() => setFilm(sharp === null || sharp === 'failed' ? quick : sharp), [sharp]);
    return (
        <div class="large-preview">
            <FilmPlace film={film} playing={playing} label={texts.large(app.transitionName(transition))} />
            <button
                class="button round play"
                aria-label={playing ? texts.pauseFilm : texts.playFilm}
                onClick={() => setPlaying(!playing)}
            >
                <Icon name={playing ? 'pause' : 'play'} />
            </button>
        </div>
    );
}

function Tile({ picture, row }: { picture: Picture; row: number }) {
    const app = useApp();
    const film = useFilm(picture, row, tileLook);
    const [pointed, setPointed] = useState(false);
    const chosen = picture.gap.transition === row;
    return (
        <label class="tile" onPointerEnter={() => setPointed(true)} onPointerLeave={() => setPointed(false)}>
            <input
                type="radio"
                name="transition"
                class="for-readers"
                checked={chosen}
                onChange={() => app.setGap(picture.id, { transition: row })}
            />
            <FilmPlace film={film} playing={pointed || !prefersStillness()} />
            <span class="tile-name">{app.transitionName(row)}</span>
        </label>
    );
}

function TimeField({
    label,
    value,
    least,
    set,
}: {
    label: string;
    value: number;
    least: number;
    set(value: number): void;
}) {
    const id = useId();
    return (
        <div class="setting time">
            <label for={id}>{label}</label>
            <span class="number">
                <NumberField
                    id={id}
                    minimum={least / 100}
                    maximum={10}
                    step={0.01}
                    value={value / 100}
                    take={(time) => set(Math.max(least, Math.min(1000, Math.round(time * 100))))}
                />
                <span class="unit">{texts.unitSeconds}</span>
            </span>
        </div>
    );
}

function Surprise() {
    const app = useApp();
    const { seed } = useProject();
    return (
        <div class="surprise">
            <button class="button" onClick={() => app.surprise(1 + Math.floor(Math.random() * 9999))}>
                <Icon name="dice" />
                <span>{texts.surprise}</span>
            </button>
            {seed !== null && (
                <label>
                    {texts.seed}
                    <NumberField
                        minimum={0}
                        maximum={largestSeed}
                        value={seed}
                        take={(number) =>
                            app.surprise(Math.max(0, Math.min(largestSeed, Math.trunc(number))))
                        }
                    />
                </label>
            )}
        </div>
    );
}

function GapSettings({ picture }: { picture: Picture }) {
    const app = useApp();
    const transition = app.tables.transitions[picture.gap.transition];
    const keys = transition?.settings ?? [];
    const settings = app.tables.settings.filter((setting) => keys.includes(setting.key));
    const name = transition?.name ?? '';
    const sharing = app.tables.transitions
        .filter((row) => row !== transition && row.settings.some((key) => keys.includes(key)))
        .map((row) => row.name);
    return (
        <div class="gap-settings">
            <div class="title-row">
                <h2>{name}</h2>
                <button class="button small" onClick={() => app.useForAll(picture.gap.transition)}>
                    {texts.useForAll}
                </button>
            </div>
            {settings.length === 0 ? (
                <p class="hint">{texts.noSettings}</p>
            ) : (
                <fieldset>
                    <legend class="hint">
                        {texts.settingsScope(name, sharing)}{' '}
                        <button class="link" onClick={() => app.resetSettings(keys)}>
                            {texts.reset}
                        </button>
                    </legend>
                    {settings.map((setting) => (
                        <SettingControl key={setting.key} setting={setting} />
                    ))}
                </fieldset>
            )}
            <fieldset>
                <legend class="hint">{texts.timing}</legend>
                <div class="times">
                    <TimeField
                        label={texts.pause}
                        value={picture.gap.pause}
                        least={0}
                        set={(pause) => app.setGap(picture.id, { pause })}
                    />
                    <TimeField
                        label={texts.delay}
                        value={picture.gap.delay}
                        least={1}
                        set={(delay) => app.setGap(picture.id, { delay })}
                    />
                </div>
            </fieldset>
        </div>
    );
}

export function TransitionPanel() {
    const app = useApp();
    const project = useProject();
    const selected = useAppState((state) => state.selected);
    const index = Math.max(
        0,
        project.pictures.findIndex((picture) => picture.id === selected),
    );
    const picture = project.pictures[index];
    if (picture === undefined) return null;
    const next = nextPicture(project, picture.id) ?? picture;
    const to = project.pictures.indexOf(next) + 1;
    const title = next === picture ? texts.gapTitleAlone : texts.gapTitle(index + 1, to);
    return (
        <div class="transition-panel">
            <div class="stage">
                <h2 class="stage-title">{title}</h2>
                <LargePreview picture={picture} />
            </div>
            <GapSettings picture={picture} />
            <section class="chooser" aria-label={texts.chooseTransition}>
                <div class="title-row">
                    <h2>{texts.chooseTransition}</h2>
                    <Surprise />
                </div>
                <div class="tiles" role="radiogroup" aria-label={texts.chooseTransition}>
                    {app.tables.transitions.map((_, row) => (
                        <Tile key={row} picture={picture} row={row} />
                    ))}
                </div>
            </section>
        </div>
    );
}
