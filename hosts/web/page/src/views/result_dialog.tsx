// The finished animation: playing, with what it is, to be saved, dragged out or copied; before it is finished,
// how far it is.
import { useEffect, useLayoutEffect, useMemo, useRef, useState } from 'preact/hooks';
import { blobOf } from '../engine/pixels';
import type { Result } from '../state/builder';
import { bytes, texts } from '../texts';
import { errorText, Progress } from './build_bar';
import { useApp, useAppState, useBuilder } from './context';
import { drawPixels, prefersStillness } from './film';
import { Icon } from './icons';
import { saveBlob } from './saving';

interface PlayerProps {
    result: Result;
    playing: boolean;
    /** The frame that is shown. */
    index: { current: number };
}

/** Plays frame by frame what browsers cannot, and holds one of them still. */
function FramePlayer({ result, playing, index }: PlayerProps) {
    const app = useApp();
    const canvas = useRef<HTMLCanvasElement>(null);
    useEffect(() => {
        let live = true;
        const { delays } = result.built;
        const play = async (): Promise<void> => {
            while (live) {
                const pixels = await app.builder.frame(index.current);
                if (live && canvas.current !== null) drawPixels(canvas.current, pixels);
                if (!playing) return;
                await new Promise((next) => setTimeout(next, Math.max(20, delays[index.current]! * 10)));
                if (live) index.current = (index.current + 1) % delays.length;
            }
        };
        play().catch(() => {});
        return () => {
            live = false;
        };
    }, [result, playing]);
    // As large from the beginning as its frames, so that nothing below moves.
    const { width, height } = result.built;
    const label = texts.resultAlternative(playing);
    return <canvas ref={canvas} class="finished" role="img" aria-label={label} {...{ width, height }} />;
}

function Finished({ result }: { result: Result }) {
    const app = useApp();
    const kind = app.tables.kinds.find((row) => row.id === result.project.kind)!;
    const file = useMemo(() => new Blob([result.file], { type: kind.mediaType }), [result]);
    const [playing, setPlaying] = useState(!prefersStillness());
    // Of a new address browsers play the first frame first.
    const url = useMemo(() => URL.createObjectURL(file), [file, playing]);
    useEffect(() => () => URL.revokeObjectURL(url), [url]);
    const shown = kind.shown && playing;
    const began = useMemo(() => performance.now(), [result, playing]);
    const playerFrame = useRef(0);
    const [told, setTold] = useState('');
    const name = `lumafold${kind.suffix}`;
    const { built } = result;
    const duration = built.delays.reduce((sum, delay) => sum + delay, 0);
    /** The browser plays from the moment the picture is shown. */
    const frameShown = (): number => {
        if (!shown) return playerFrame.current;
        let left = ((performance.now() - began) / 10) % Math.max(1, duration);
        return Math.max(
            0,
            built.delays.findIndex((delay) => (left -= delay) < 0),
        );
    };
    const toggle = (): void => {
        playerFrame.current = frameShown();
        setPlaying(!playing);
    };
    const copy = async (): Promise<void> => {
        try {
            const png = app.builder.frame(frameShown()).then((pixels) => blobOf(pixels));
            await navigator.clipboard.write([new ClipboardItem({ 'image/png': png })]);
            setTold(texts.copied);
        } catch {
            setTold(texts.notCopied);
        }
    };
    return (
        <>
            {shown ? (
                <img
                    class="finished"
                    src={url}
                    alt={texts.resultAlternative(playing)}
                    width={built.width}
                    height={built.height}
                />
            ) : (
                <FramePlayer result={result} playing={playing} index={playerFrame} />
            )}
            <p class="facts">
                <strong>{bytes(file.size)}</strong> {texts.pixels(built.width, built.height)},{' '}
                {texts.summary(built.delays.length, duration)}, {built.colours}
            </p>
            <div class="dialog-actions">
                <button class="button primary" onClick={() => saveBlob(file, name)}>
                    <Icon name="save" />
                    <span>{texts.download(bytes(file.size))}</span>
                </button>
                <button class="button" onClick={toggle}>
                    <Icon name={playing ? 'pause' : 'play'} />
                    <span>{playing ? texts.pauseFilm : texts.playFilm}</span>
                </button>
                <button class="button" onClick={() => void copy()}>
                    <Icon name="copy" />
                    <span>{texts.copyFrame}</span>
                </button>
            </div>
            <p class="hint" role="status">
                {told !== '' ? told : !kind.shown ? texts.notShown : playing && texts.dragOut}
            </p>
        </>
    );
}

export function ResultDialog() {
    const app = useApp();
    const open = useAppState((state) => state.resultOpen);
    const result = useBuilder((state) => state.result);
    const error = useBuilder((state) => state.error);
    const running = useBuilder((state) => state.running);
    const dialog = useRef<HTMLDialogElement>(null);
    // Before it is painted, so that nobody meets what is in it while it is closed.
    useLayoutEffect(() => {
        if (open && dialog.current?.open === false) dialog.current.showModal();
        if (!open && dialog.current?.open === true) dialog.current.close();
    }, [open]);
    const title = result !== null ? texts.result : error !== null ? texts.notBuiltTitle : texts.building;
    const cancel = (): void => {
        app.builder.cancel();
        app.showResult(false);
    };
    return (
        <dialog
            ref={dialog}
            class="dialog"
            aria-labelledby="result-title"
            onClose={() => app.showResult(false)}
        >
            {open && (
                <>
                    <div class="title-row">
                        <h2 id="result-title">{title}</h2>
                        <button
                            class="button quiet small"
                            aria-label={texts.close}
                            onClick={() => app.showResult(false)}
                        >
                            <Icon name="close" />
                        </button>
                    </div>
                    {result !== null && <Finished result={result} />}
                    {error !== null && <p class="error">{errorText(error)}</p>}
                    <Progress />
                    {running && (
                        <div class="dialog-actions">
                            <button class="button" onClick={cancel}>
                                {texts.cancel}
                            </button>
                        </div>
                    )}
                </>
            )}
        </dialog>
    );
}
