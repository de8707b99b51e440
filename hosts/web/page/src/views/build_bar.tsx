// What the file is going to be, how far it is, and the button that makes it.
import { bytes, texts } from '../texts';
import { useApp, useBuilder } from './context';
import { Icon } from './icons';

export function phaseText(caption: string): string {
    return caption === '' ? texts.packing : (texts.phases[caption] ?? caption);
}

export function errorText(reason: string): string {
    return /memory/i.test(reason) ? texts.memoryError : texts.buildError(reason);
}

export function Progress() {
    const { done, running, caption, secondsLeft } = useBuilder((state) => state);
    if (!running) return null;
    return (
        <div class="progress">
            <progress max="1" value={done} aria-label={texts.building} />
            <span>
                {done === 0 ? texts.readingPictures : phaseText(caption)}
                {secondsLeft !== null && secondsLeft > 2 && `, ${texts.secondsLeft(secondsLeft)}`}
            </span>
        </div>
    );
}

export function BuildBar() {
    const app = useApp();
    const { forecast, result, running, error, done } = useBuilder((state) => state);
    return (
        <footer class="build-bar">
            <div class="forecast" aria-live="polite">
                {forecast !== null && (
                    <>
                        <strong class="file-size">
                            {result !== null ? bytes(result.file.size) : texts.about(bytes(forecast.bytes))}
                        </strong>
                        <span class="hint">{texts.summary(forecast.frames, forecast.duration)}</span>
                    </>
                )}
                {error !== null && <span class="error">{errorText(error)}</span>}
            </div>
            {running && <progress class="thin" max="1" value={done} aria-label={texts.building} />}
            <button class="button primary" onClick={() => app.showResult(true)}>
                <Icon name={result !== null ? 'save' : 'play'} />
                <span>{result !== null ? texts.show : texts.build}</span>
            </button>
        </footer>
    );
}
