// A field for a number. It shows the value that holds, also after something was typed that is refused.
import { useState } from 'preact/hooks';

interface Props {
    id?: string;
    label?: string;
    minimum: number;
    maximum: number;
    step?: number;
    value: number;
    /** Takes a number typed, or not. */
    take(number: number): void;
}

export function NumberField({ id, label, minimum, maximum, step, value, take }: Props) {
    const [, draw] = useState({});
    const onChange = ({ currentTarget: { value: text } }: { currentTarget: HTMLInputElement }): void => {
        if (text !== '') take(Number(text));
        draw({});
    };
    return (
        <input
            type="number"
            id={id}
            aria-label={label}
            min={minimum}
            max={maximum}
            step={step}
            value={value}
            onChange={onChange}
        />
    );
}
