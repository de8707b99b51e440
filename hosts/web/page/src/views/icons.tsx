// The page's few signs, drawn with the colour of the text around them.
const paths = {
    add: 'M12 5v14M5 12h14',
    left: 'M14 6l-6 6 6 6',
    right: 'M10 6l6 6-6 6',
    close: 'M6 6l12 12M18 6L6 18',
    play: 'M8 5v14l11-7z',
    pause: 'M8 5v14M16 5v14',
    dice: 'M5 5h14v14H5zM9 9h.01M15 15h.01M15 9h.01M9 15h.01',
    save: 'M12 4v11m0 0l-4-4m4 4l4-4M5 19h14',
    loop: 'M4 12a8 8 0 0 1 14-5l2 2M20 4v5h-5M20 12a8 8 0 0 1-14 5l-2-2M4 20v-5h5',
    menu: 'M5 7h14M5 12h14M5 17h14',
    copy: 'M9 9h10v10H9zM5 15V5h10',
    check: 'M5 12l5 5 9-10',
} as const;

export type IconName = keyof typeof paths;

export function Icon({ name }: { name: IconName }) {
    return (
        <svg class="icon" viewBox="0 0 24 24" aria-hidden="true">
            <path d={paths[name]} />
        </svg>
    );
}
