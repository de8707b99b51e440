// One setting of the engine's table as a control: its kind, range and label come from there.
import { useId } from 'preact/hooks';
import type { Setting } from '../engine/protocol';
import { valueOf } from '../state/project';
import { useApp, useProject } from './context';
import { NumberField } from './number_field';

/** The engine's colours are 0x00BBGGRR. */
export function colourText(value: number): string {
    const part = (shift: number): string => ((value >> shift) & 0xff).toString(16).padStart(2, '0');
    return `#${part(0)}${part(8)}${part(16)}`;
}

export function colourValue(text: string): number {
    const part = (start: number): number => parseInt(text.slice(start, start + 2), 16);
    return part(1) | (part(3) << 8) | (part(5) << 16);
}

const sentence = (meaning: string): string => meaning.charAt(0).toUpperCase() + meaning.slice(1);

interface Props {
    setting: Setting;
    disabled?: boolean;
    note?: string;
}

function NumberInputs({
    setting,
    value,
    id,
    set,
}: {
    setting: Setting;
    value: number;
    id: string;
    set(value: number): void;
}) {
    const { minimum, maximum } = setting;
    const take = (number: number): void => {
        if (Number.isInteger(number)) set(Math.max(minimum, Math.min(maximum, number)));
    };
    return (
        <span class="number">
            <input
                type="range"
                id={id}
                min={minimum}
                max={maximum}
                value={value}
                onInput={(event) => take(Number(event.currentTarget.value))}
            />
            <NumberField label={setting.label} {...{ minimum, maximum, value, take }} />
        </span>
    );
}

export function SettingControl({ setting, disabled, note }: Props) {
    const app = useApp();
    const value = valueOf(useProject(), setting.key);
    const id = useId();
    const set = (next: number): void => app.set(setting.key, next);
    const hint = <small id={`${id}-hint`}>{note ?? `${sentence(setting.meaning)}.`}</small>;
    if (setting.kind === 'switch') {
        return (
            <div class="setting">
                <label class="switch">
                    <input
                        type="checkbox"
                        role="switch"
                        checked={value !== 0 && disabled !== true}
                        disabled={disabled}
                        aria-describedby={`${id}-hint`}
                        onChange={(event) => set(event.currentTarget.checked ? 1 : 0)}
                    />
                    <span>{setting.label}</span>
                </label>
                {hint}
            </div>
        );
    }
    return (
        <div class="setting">
            <label for={id}>{setting.label}</label>
            {setting.kind === 'number' && <NumberInputs setting={setting} value={value} id={id} set={set} />}
            {setting.kind === 'colour' && (
                <input
                    type="color"
                    id={id}
                    value={colourText(value)}
                    onInput={(event) => set(colourValue(event.currentTarget.value))}
                />
            )}
            {setting.kind === 'choice' && (
                <select
                    id={id}
                    value={value}
                    disabled={disabled}
                    onChange={(event) => set(Number(event.currentTarget.value))}
                >
                    {setting.choices.map((choice, index) => (
                        <option key={choice} value={index}>
                            {choice}
                        </option>
                    ))}
                </select>
            )}
            {hint}
        </div>
    );
}
