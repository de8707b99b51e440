# Shared by the scripts beside it: where things are, how they speak, how they become root.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cacheDir=${LUMAFOLD_CACHE:-$([ "$(id -u)" = 0 ] && echo /var/cache/lumafold || echo "${XDG_CACHE_HOME:-$HOME/.cache}/lumafold")}
wineRoot=$cacheDir/i386-root

say() { printf '== %s\n' "$*"; }
die() { printf 'lumafold: %s\n' "$*" >&2; exit 1; }

asRoot() {
    if [ "$(id -u)" = 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else die "must be root, or have sudo, to run: $*"
    fi
}
