// Any frame as it will be, beside what it was in full colour, down to the pixel; and the palette.
import { useEffect, useRef, useState } from 'preact/hooks';
import { Ended } from '../engine/client';
import type { Pixels } from '../engine/protocol';
import type { Result } from '../state/builder';
import { texts } from '../texts';
import { errorText } from './build_bar';
import { useApp, useBuilder } from './context';
import { drawPixels, prefersStillness } from './film';
import { Icon } from './icons';
import { colourText } from './setting_control';

const zooms = [0, 1, 2, 4, 8] as const;
type Zoom = (typeof zooms)[number];

/** The last frame stays while the next is fetched. Beside it, why there is none. */
function useFrame(
    result: Result | null,
    index: number,
    fetch: ((index: number) => Promise<Pixels>) | null,
): [Pixels | null, error: string | null] {
    const [pixels, setPixels] = useState<Pixels | null>(null);
    const [error, setError] = useState<string | null>(null);
    const wanted = fetch !== null;
    useEffect(() => {
        if (!wanted) setPixels(null);
        setError(null);
        if (result === null || fetch === null) return;
        let live = true;
        fetch(index).then(
            (next) => live && setPixels(next),
            (reason: Error) => live && !(reason instanceof Ended) && setError(reason.message),
        );
        return () => {
            live = false;
        };
    }, [result, index, wanted]);
    return [pixels, error];
}

function FrameCanvas({ pixels, style }: { pixels: Pixels; style: string }) {
    const canvas = useRef<HTMLCanvasElement>(null);
    useEffect(() => {
        if (canvas.current !== null) drawPixels(canvas.current, pixels);
    }, [pixels]);
    return <canvas ref={canvas} class={style} width={pixels.width} height={pixels.height} />;
}

interface StageProps {
    reduced: Pixels;
    full: Pixels | null;
    zoom: Zoom;
    label: string;
}

/** Where a frame is looked at: left of the handle reduced, right of it in full colour. */
function FrameStage({ reduced, full, zoom, label }: StageProps) {
    const [split, setSplit] = useState(50);
    const width = zoom === 0 ? undefined : `${(reduced.width * zoom) / devicePixelRatio}px`;
    return (
        <div
            class={`frame-stage ${zoom === 0 ? 'fitted' : ''}`}
            tabIndex={zoom === 0 ? -1 : 0}
            role="group"
            aria-label={label}
        >
            <div
                class="frame-pair"
                style={{
                    width,
                    '--split': `${split}%`,
                    '--natural': `${reduced.width * 1.25}px`,
                    '--ratio': `${reduced.width / reduced.height}`,
                }}
            >
                <FrameCanvas pixels={reduced} style="frame" />
                {full !== null && (
                    <>
                        <FrameCanvas pixels={full} style="frame full" />
                        <span class="side-name start">{texts.reducedSide}</span>
                        <span class="side-name end">{texts.fullSide}</span>
                        <span class="split-line" />
                        <input
                            class="split"
                            type="range"
                            min="0"
                            max="100"
                            step="0.5"
                            value={split}
                            aria-label={texts.compareHandle}
                            onInput={(event) => setSplit(Number(event.currentTarget.value))}
                        />
                    </>
                )}
            </div>
        </div>
    );
}

function PaletteView({ result }: { result: Result }) {
    const { palette, colours } = result.built;
    return (
        <div class="palette-view">
            <p class="hint">{texts.palette(colours)}</p>
            {palette.length > 0 && (
                <div class="palette" aria-hidden="true">
                    {palette.map((colour, index) => (
                        <span
                            key={index}
                            style={{ background: colourText(colour) }}
                            title={colourText(colour)}
                        />
                    ))}
                </div>
            )}
        </div>
    );
}

/** Goes on to the next frame when the one shown has been seen for its time. */
function usePlaying(
    result: Result | null,
    index: number,
    setIndex: (index: number) => void,
): [boolean, (on: boolean) => void] {
    const [playing, setPlaying] = useState(!prefersStillness());
    useEffect(() => {
        if (!playing || result === null) return;
        const { delays } = result.built;
        const timer = setTimeout(
            () => setIndex((index + 1) % delays.length),
            Math.max(20, (delays[index] ?? 0) * 10),
        );
        return () => clearTimeout(timer);
    }, [playing, result, index]);
    return [playing, setPlaying];
}

export function FrameInspector() {
    const app = useApp();
    const result = useBuilder((state) => state.result);
    const last = useBuilder((state) => state.lastResult);
    const large = useBuilder((state) => state.large);
    const waits = useBuilder((state) => state.large || state.error !== null);
    const shown = result ?? last;
    const [wanted, setIndex] = useState(0);
    const [comparing, setComparing] = useState(false);
    const [zoom, setZoom] = useState<Zoom>(0);
    const count = shown?.built.delays.length ?? 1;
    const index = Math.min(wanted, count - 1);
    const [playing, setPlaying] = usePlaying(result, index, setIndex);
    const [reduced, failed] = useFrame(result, index, (at) => app.builder.frame(at));
    const [full, fullFailed] = useFrame(
        result,
        index,
        comparing ? (at) => app.builder.fullColourFrame(at) : null,
    );
    const error = failed ?? fullFailed;
    const label = texts.frameOf(index, count);
    if (shown === null || reduced === null) {
        return (
            <section class="inspector" aria-label={texts.frames}>
                <div class="frame-stage empty">
                    <p class="hint">{large ? texts.waitsForBuild : texts.notBuilt}</p>
                </div>
                {error !== null && <p class="error">{errorText(error)}</p>}
            </section>
        );
    }
    return (
        <section class={`inspector ${result === null ? 'stale' : ''}`} aria-label={texts.frames}>
            <FrameStage reduced={reduced} full={comparing ? full : null} zoom={zoom} label={label} />
            <div class="frame-tools">
                <button
                    class="button round"
                    aria-label={playing ? texts.pauseFilm : texts.playFilm}
                    onClick={() => setPlaying(!playing)}
                >
                    <Icon name={playing ? 'pause' : 'play'} />
                </button>
                <input
                    type="range"
                    class="scrubber"
                    min="0"
                    max={count - 1}
                    value={index}
                    aria-label={texts.frames}
                    aria-valuetext={label}
                    onInput={(event) => {
                        setPlaying(false);
                        setIndex(Number(event.currentTarget.value));
                    }}
                />
                <output class="frame-number">
                    {result !== null ? label : waits ? texts.outOfDate : texts.updating}
                </output>
            </div>
            <div class="frame-tools">
                <label class="switch">
                    <input
                        type="checkbox"
                        role="switch"
                        checked={comparing}
                        onChange={(event) => setComparing(event.currentTarget.checked)}
                    />
                    <span>{texts.compare}</span>
                </label>
                <span class="stretch" />
                <div class="choices small" role="radiogroup" aria-label={texts.zoom}>
                    {zooms.map((one) => (
                        <label key={one} class="choice">
                            <input
                                type="radio"
                                name="zoom"
                                class="for-readers"
                                checked={zoom === one}
                                onChange={() => setZoom(one)}
                            />
                            <span>{one === 0 ? texts.zoomFit : `${one}×`}</span>
                        </label>
                    ))}
                </div>
            </div>
            {error !== null && (
                <p class="error" role="alert">
                    {errorText(error)}
                </p>
            )}
            <PaletteView result={shown} />
        </section>
    );
}
