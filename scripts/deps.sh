# Sourced by the scripts: installs the Debian packages the project needs.
SX_PACKAGES=(
    build-essential cmake ninja-build pkg-config lld
    qt6-base-dev libqt6sql6-sqlite libqt6sql6-psql libgl-dev
    libsqlite3-dev libpq-dev libquazip1-qt6-dev
    postgresql dbus openssl
    poppler-utils python3 python3-openpyxl
    fonts-liberation2 fontconfig
    dpkg-dev file lintian desktop-file-utils appstream
)

sx_install_deps() {
    local missing=()
    local p
    for p in "${SX_PACKAGES[@]}" "$@"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
    done
    if ((${#missing[@]})); then
        echo "== installing: ${missing[*]}"
        if [ "$(id -u)" -ne 0 ]; then
            echo "missing packages and not root: ${missing[*]}" >&2
            return 1
        fi
        export DEBIAN_FRONTEND=noninteractive
        apt-get update -q
        apt-get install -y -q --no-install-recommends "${missing[@]}"
    fi
}
