# For ./demo and ./check: install_missing PACKAGE... installs those of the Debian packages that are not there yet, as
# root or through sudo, with one line for each. It returns 1, with a message, if that cannot be done.

install_missing()
{
    local package output missing=() as_root=()

    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "This is not a Debian system; what is needed must be there already: $*"
        return 0
    fi
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Missing packages, and neither root nor sudo to install them: ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
        # nobody is there to type a password
        [ -t 0 ] || as_root=(sudo -n)
    fi

    echo "Reading the list of packages"
    if ! "${as_root[@]}" apt-get update -qq </dev/null >/dev/null; then
        echo "The list of packages cannot be renewed; trying with the one that is there"
    fi
    output=$(mktemp)
    for package in "${missing[@]}"; do
        echo "Installing $package"
        if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "$package" </dev/null >"$output" 2>&1; then
            cat "$output" >&2
            echo "Cannot install $package" >&2
            rm -f "$output"
            return 1
        fi
    done
    rm -f "$output"
}
