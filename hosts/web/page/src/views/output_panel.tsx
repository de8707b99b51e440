// How the file is made: its size, kind and colours, beside its frames as they will be.
import { canvasModes, canvasSize, largestSide, valueOf } from '../state/project';
import { texts } from '../texts';
import { useApp, useProject } from './context';
import { FrameInspector } from './frame_inspector';
import { NumberField } from './number_field';
import { SettingControl } from './setting_control';

function SideField({ label, value, set }: { label: string; value: number; set(value: number): void }) {
    return (
        <label class="side">
            <span>{label}</span>
            <NumberField
                minimum={1}
                maximum={largestSide}
                value={value}
                take={(side) => side >= 1 && set(Math.min(largestSide, Math.round(side)))}
            />
        </label>
    );
}

function SizeChoice() {
    const app = useApp();
    const project = useProject();
    const { canvas } = project;
    const size = canvasSize(project);
    return (
        <fieldset>
            <legend>{texts.size}</legend>
            <div class="choices" role="radiogroup" aria-label={texts.canvasMode}>
                {canvasModes.map((mode) => (
                    <label key={mode} class="choice">
                        <input
                            type="radio"
                            name="canvas"
                            class="for-readers"
                            checked={canvas.mode === mode}
                            onChange={() => app.setCanvas({ mode })}
                        />
                        <span>{texts.canvasModes[mode]}</span>
                    </label>
                ))}
            </div>
            {canvas.mode !== 'own' && (
                <div class="sides">
                    <SideField
                        label={texts.width}
                        value={canvas.width}
                        set={(width) => app.setCanvas({ width })}
                    />
                    <SideField
                        label={texts.height}
                        value={canvas.height}
                        set={(height) => app.setCanvas({ height })}
                    />
                </div>
            )}
            <p class="hint">
                {texts.canvasMeanings[canvas.mode]} {texts.canvasNow(size.width, size.height)}{' '}
                {size.width * size.height > 1500 * 1000 && texts.largeCanvas}
            </p>
        </fieldset>
    );
}

const usualQuality = 80;

function QualityChoice() {
    const app = useApp();
    const { quality } = useProject();
    return (
        <>
            <div class="setting">
                <label class="switch">
                    <input
                        type="checkbox"
                        role="switch"
                        checked={quality === null}
                        onChange={(event) =>
                            app.setQuality(event.currentTarget.checked ? null : usualQuality)
                        }
                    />
                    <span>{texts.lossless}</span>
                </label>
                <small>{texts.losslessMeaning}</small>
            </div>
            {quality !== null && (
                <label class="setting">
                    <span>
                        {texts.quality}: {quality}
                    </span>
                    <input
                        type="range"
                        min="0"
                        max="100"
                        value={quality}
                        onInput={(event) => app.setQuality(Number(event.currentTarget.value))}
                    />
                </label>
            )}
        </>
    );
}

function KindChoice() {
    const app = useApp();
    const { kind } = useProject();
    const lossy = app.tables.kinds.find((row) => row.id === kind)?.lossy === true;
    return (
        <fieldset>
            <legend>{texts.kind}</legend>
            <div class="choices">
                {app.tables.kinds.map((row) => (
                    <label key={row.id} class="choice">
                        <input
                            type="radio"
                            name="kind"
                            class="for-readers"
                            checked={kind === row.id}
                            onChange={() => app.setKind(row.id)}
                        />
                        <span>{row.name}</span>
                    </label>
                ))}
            </div>
            {lossy && <QualityChoice />}
        </fieldset>
    );
}

function ColourSettings() {
    const app = useApp();
    const project = useProject();
    const setting = (key: string) => app.tables.settings.find((row) => row.key === key)!;
    const kind = app.tables.kinds.find((row) => row.id === project.kind);
    const canTrue = kind?.trueColour === true;
    const isTrue = canTrue && valueOf(project, 'TransitionTruecolour') !== 0;
    const dithered = valueOf(project, 'TransitionDither') !== 0;
    return (
        <fieldset>
            <legend>{texts.colours}</legend>
            <SettingControl
                setting={setting('TransitionTruecolour')}
                disabled={!canTrue}
                {...(canTrue ? {} : { note: texts.trueColourNever(kind?.name ?? '') })}
            />
            {!isTrue && (
                <>
                    <SettingControl setting={setting('TransitionCustompalette')} />
                    {valueOf(project, 'TransitionCustompalette') === 0 && (
                        <SettingControl setting={setting('TransitionPalette')} />
                    )}
                    <SettingControl setting={setting('TransitionDither')} />
                </>
            )}
            <SettingControl
                setting={setting('Supercompress')}
                disabled={isTrue}
                {...(isTrue ? { note: texts.noSupercompression } : {})}
            />
            <SettingControl setting={setting('TransitionMattcolour')} />
            <details class="further">
                <summary>{texts.further}</summary>
                {!isTrue && <SettingControl setting={setting('FastRemap')} />}
                {!isTrue && dithered && (
                    <>
                        <SettingControl setting={setting('DitherBrightness')} />
                        <SettingControl setting={setting('DitherContrast')} />
                    </>
                )}
                <SettingControl setting={setting('RandomSeed')} />
                <SettingControl setting={setting('AddDescriptiveCommentBlock')} />
            </details>
        </fieldset>
    );
}

export function OutputPanel() {
    return (
        <div class="output-panel">
            <FrameInspector />
            <div class="output-settings">
                <SizeChoice />
                <KindChoice />
                <ColourSettings />
            </div>
        </div>
    );
}
