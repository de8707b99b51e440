# Shared by the scripts beside it: where things are, how they speak, how they become root.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
cacheDir=${LUMAFOLD_CACHE:-$([ "$(id -u)" = 0 ] && echo /var/cache/lumafold || echo "${XDG_CACHE_HOME:-$HOME/.cache}/lumafold")}
wineRoot=$cacheDir/i386-root
packageRoot=$cacheDir/package-root

say() { printf '== %s\n' "$*"; }
die() { printf 'lumafold: %s\n' "$*" >&2; exit 1; }

asRoot() {
    if [ "$(id -u)" = 0 ]; then "$@"
    elif command -v sudo >/dev/null; then sudo "$@"
    else die "must be root, or have sudo, to run: $*"
    fi
}

# buildPreset PRESET TARGET...
buildPreset() {
    say "building ($1)"
    mkdir -p "$root/out"
    cmake --preset "$1" >"$root/out/configure-$1.log" 2>&1 || { cat "$root/out/configure-$1.log" >&2; return 1; }
    cmake --build --preset "$1" --target "${@:2}"
}

# makeRoot FOLDER ARCHITECTURE PACKAGE...: a small system with these packages, from where the machine's own come.
makeRoot() {
    local folder=$1 architecture=$2 release mirror log
    log=$cacheDir/$(basename "$folder").log
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    mirror=$(apt-get indextargets --format '$(CODENAME) $(COMPONENT) $(REPO_URI)' 'Created-By: Packages' |
             awk -v release="$release" '$1 == release && $2 == "main" { print $3; exit }')
    mkdir -p "$cacheDir"
    removeRoot "$folder.new"
    asRoot debootstrap --arch="$architecture" --variant=minbase --include="$(IFS=,; echo "${*:3}")" \
        "$release" "$folder.new" ${mirror:+"$mirror"} >"$log" 2>&1 ||
        { tail -n 5 "$log" >&2; removeRoot "$folder.new"; return 1; }
    removeRoot "$folder"
    asRoot mv "$folder.new" "$folder"
}

# Whatever is mounted in it stays out of harm's way: let go of first, and never crossed into.
removeRoot() {
    local mounted
    for mounted in $(awk -v under="$1/" 'index($2, under) == 1 { print $2 }' /proc/self/mounts | sort -r); do
        asRoot umount "$mounted" || return
    done
    asRoot rm -rf --one-file-system "$1"
}
