// What was kept or comes from a file, as this page and its engine can take it: an older page knew less, and files
// may be damaged.
import type { SettingValues, Tables } from '../engine/protocol';
import { canvasModes, largestSide, largestSeed, newProject } from './project';
import type { Canvas, Gap, Picture, Project } from './project';

/** Any value as one whose fields can be asked for. */
type Found<T> = { readonly [Key in keyof T]?: unknown };
const found = <T>(value: unknown): Found<T> => (typeof value === 'object' && value !== null ? value : {});

/** A whole number brought into its range; else `usual`. */
function whole<Usual>(value: unknown, minimum: number, maximum: number, usual: Usual): number | Usual {
    return Number.isInteger(value) ? Math.max(minimum, Math.min(maximum, value as number)) : usual;
}

/** A value for each setting of the table, those that it has and no others. */
export function completeSettings(values: unknown, tables: Tables): SettingValues {
    const given = found<SettingValues>(values);
    return Object.fromEntries(
        tables.settings.map(({ key, minimum, maximum, default: usual }) => [
            key,
            whole(given[key], minimum, maximum, usual),
        ]),
    );
}

function completeGap(gap: unknown, settings: SettingValues, tables: Tables): Gap {
    const { transition, pause, delay } = found<Gap>(gap);
    const time = (value: unknown, name: string): number => {
        const { minimum, maximum } = tables.settings.find(({ key }) => key === name)!;
        return whole(value, minimum, maximum, settings[name]!);
    };
    return {
        transition: whole(transition, 0, tables.transitions.length - 1, settings.TransitionType!),
        pause: time(pause, 'TransitionPause'),
        delay: time(delay, 'TransitionDelay'),
    };
}

function completeCanvas(canvas: unknown, usual: Canvas): Canvas {
    const { mode, width, height } = found<Canvas>(canvas);
    return {
        mode: canvasModes.find((one) => one === mode) ?? usual.mode,
        width: whole(width, 1, largestSide, usual.width),
        height: whole(height, 1, largestSide, usual.height),
    };
}

export function completeProject(kept: Project | null, tables: Tables): Project {
    const fresh = newProject(tables);
    const given = found<Project>(kept);
    const settings = completeSettings(given.settings, tables);
    const pictures = (kept?.pictures ?? [])
        .filter(({ width, height }) => [width, height].every((side) => Number.isInteger(side) && side > 0))
        .map(({ id, name, file, width, height, thumbnail, opaque, gap }): Picture => ({
            ...{ id, file, width, height, thumbnail },
            name: String(name),
            opaque: opaque === true,
            gap: completeGap(gap, settings, tables),
        }));
    return {
        pictures,
        settings,
        canvas: completeCanvas(given.canvas, fresh.canvas),
        kind: tables.kinds.find(({ id }) => id === given.kind)?.id ?? fresh.kind,
        quality: whole(given.quality, 0, 100, null),
        seed: whole(given.seed, 0, largestSeed, null),
    };
}
