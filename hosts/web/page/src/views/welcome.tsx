// What a first visit shows: where pictures go, and three to try.
import { bytesOf } from '../engine/client';
import type { BroughtPicture } from '../state/app';
import { texts } from '../texts';
import { ChooseFiles } from './choose_files';
import { useApp, useAppState } from './context';
import { Icon } from './icons';

const sampleTransitions = ['Soft iris (ellipse)', 'Silent movie', 'Unplugged TV'];

/** The sample pictures, which stand in the page in base 64. */
function samples(): (BroughtPicture & { address: string })[] {
    const found = JSON.parse(document.getElementById('samples')?.textContent ?? '{}') as Record<
        string,
        string
    >;
    return Object.entries(found).map(([name, packed], index) => {
        const address = `data:image/jpeg;base64,${packed}`;
        return {
            name,
            file: new Blob([bytesOf(packed)], { type: 'image/jpeg' }),
            address,
            transition: sampleTransitions[index] ?? '',
        };
    });
}

export function Welcome() {
    const app = useApp();
    const reading = useAppState((state) => state.reading);
    const offered = samples();
    return (
        <main class="welcome">
            <p class="slogan">{texts.slogan}</p>
            <div class="drop-zone">
                <ChooseFiles
                    class="button primary big"
                    multiple
                    onFiles={(files) => void app.addFiles(files)}
                >
                    <Icon name="add" />
                    <span>{texts.add}</span>
                </ChooseFiles>
                <p class="drop-title">{texts.dropHere}</p>
                <p class="hint">{texts.orPaste}</p>
                {reading > 0 && <p role="status">{texts.reading(reading)}</p>}
            </div>
            <button class="samples" onClick={() => void app.addFiles(offered)}>
                <span class="sample-pictures">
                    {offered.map(({ name, address }) => (
                        <img key={name} src={address} alt="" width="120" height="80" />
                    ))}
                </span>
                <span>{texts.trySamples}</span>
            </button>
            <ol class="steps">
                {texts.steps.map(([title, text]) => (
                    <li key={title}>
                        <h2>{title}</h2>
                        <p>{text}</p>
                    </li>
                ))}
            </ol>
        </main>
    );
}
