# What ./gateway and ./test share: the packages they need and the build. Sourced, with the project's folder as the
# working directory.

build_packages="g++ cmake ninja-build pkg-config libtirpc-dev libsmartcols-dev libedit-dev nlohmann-json3-dev"
gateway_packages="libwrap0 procps psmisc"

# need PACKAGE...: installs what is missing; without the right to, says what to type.
need() {
    missing=
    for package; do
        dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing="$missing $package"
    done
    [ -z "$missing" ] && return 0
    if [ "$(id -u)" != 0 ]; then
        echo "These packages are missing; please run: sudo apt-get install$missing" >&2
        exit 1
    fi
    apt-get update -q
    # shellcheck disable=SC2086 # a list of packages
    DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $missing
}

# Whether the kernel refuses the namespaces that a simulated gateway is made of; proot carries it then.
namespaces_are_refused() {
    user=--map-root-user
    if [ "$(id -u)" = 0 ] && unshare --mount true 2>/dev/null; then user=; fi
    # shellcheck disable=SC2086 # an option or none
    ! unshare $user --mount --net --pid --fork --mount-proc true 2>/dev/null
}

# Sets rpcbind to a portmapper to run inside the gateway. One that is not installed is only unpacked under build/:
# installing it would start a network service on this machine.
find_rpcbind() {
    for rpcbind in "$(command -v rpcbind || true)" /usr/sbin/rpcbind /sbin/rpcbind "$PWD/build/rpcbind/sbin/rpcbind"; do
        [ -n "$rpcbind" ] && [ -x "$rpcbind" ] && return 0
    done
    mkdir -p build/rpcbind
    if ! (cd build/rpcbind && { apt-get download -q rpcbind || { apt-get update -q && apt-get download -q rpcbind; }; } &&
        dpkg -x rpcbind_*.deb .) >build/rpcbind/log 2>&1; then
        cat build/rpcbind/log >&2
        echo "rpcbind is needed and could not be fetched; please install it" >&2
        exit 1
    fi
    rpcbind=$PWD/build/rpcbind/sbin/rpcbind
}

# quietly LOG COMMAND...: shows what a command prints only when it fails, and then ends.
quietly() {
    log=$1
    shift
    "$@" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
}

# configure PRESET [ARGUMENT...] and compile PRESET [ARGUMENT...], as for cmake and cmake --build.
configure() {
    quietly "build/$1.configure.log" cmake --preset "$@"
}
compile() {
    quietly "build/$1.log" cmake --build --preset "$@"
}
