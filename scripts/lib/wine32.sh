# A 32-bit Wine. To be sourced from the top of the tree; whoever does has a function `skip` that tells what is left out.

# A 32-bit Wine does not go beside a 64-bit one on every Debian, so that it has a Debian of its own.
in_32_bit_debian() {
  local release
  release=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
  [ "$release" = trixie ] || release=bookworm
  scripts/in-debian --arch i386 --bind "$PWD" --bind /lib64 --bind /usr/lib/x86_64-linux-gnu "$release" "$@"
}

# False where there is none, which is said by name.
prepare_32_bit_wine() {
  local log="$PWD/build/debian-i386.log"
  echo "== a 32-bit Wine"
  if ! in_32_bit_debian bash -c \
    'here=$PWD/scripts; source scripts/lib/packages.sh; install_packages wine32; require_packages wine32' >"$log" 2>&1
  then
    skip "no 32-bit Wine: of the 32-bit build only what takes none ($(tail -n 1 "$log"))"
    return 1
  fi
}
