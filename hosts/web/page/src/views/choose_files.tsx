// A button that lets people choose files.
import type { ComponentChildren } from 'preact';
import { useRef } from 'preact/hooks';

interface Props {
    class: string;
    accept?: string;
    multiple?: boolean;
    label?: string;
    onFiles(files: File[]): void;
    children: ComponentChildren;
}

export function ChooseFiles({ class: style, accept, multiple, label, onFiles, children }: Props) {
    const input = useRef<HTMLInputElement>(null);
    const onChange = (): void => {
        const files = [...(input.current?.files ?? [])];
        if (input.current !== null) input.current.value = '';
        if (files.length > 0) onFiles(files);
    };
    return (
        <>
            <button
                type="button"
                class={style}
                aria-label={label}
                title={label}
                onClick={() => input.current?.click()}
            >
                {children}
            </button>
            <input ref={input} type="file" hidden accept={accept} multiple={multiple} onChange={onChange} />
        </>
    );
}
