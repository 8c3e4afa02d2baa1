# Installs what a Debian 12 machine lacks to build and run Zovrand.
# Sourced by ./run, ./test and the scripts beside it: need_packages NAME...

build_packages=(
  g++ cmake ninja-build ccache
  qt6-base-dev qt6-svg-dev libgl-dev fonts-dejavu-core
  unixodbc-dev libsqlite3-dev libicu-dev libcli11-dev
  tdsodbc
)
test_packages=(
  libgtest-dev libgmock-dev
  freetds-bin
  python3
)
format_packages=(clang-format-14)
fuzz_packages=(clang libclang-rt-dev llvm)
bench_packages=(libbenchmark-dev sqlite3-tools)

need_packages() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing: ${missing[*]}"
  local sudo=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
      echo "These packages are missing and sudo isn't here to install them: ${missing[*]}" >&2
      return 1
    }
    sudo=(sudo)
  fi
  local log
  log=$(mktemp)
  if ! { "${sudo[@]}" apt-get update && "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
         apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    echo "Could not install: ${missing[*]}" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}

# build_preset PRESET [TARGET...]: configures once, builds, keeps quiet unless it fails.
build_preset() {
  local preset=$1
  shift
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" ${1:+--target "$@"}
}
