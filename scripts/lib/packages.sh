# Installs Debian packages that are missing. To be sourced; needs `here`, the folder of scripts/.

# The packages of the given kinds, one a line: NAME KIND WHAT NEEDS IT.
packages_of() {
  local kind
  for kind in "$@"; do
    grep -v '^#' "$here/packages.txt" | awk -v kind="$kind" '$2 == kind'
  done
}

# What needs the package of that name.
purpose_of() {
  awk -v name="$1" '$1 == name { $1 = $2 = ""; sub(/^ +/, ""); print }' "$here/packages.txt"
}

is_installed() {
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Of the packages of the given kinds, those that are not installed; none where it cannot be asked.
missing_packages() {
  command -v dpkg-query >/dev/null || return 0
  local name rest
  packages_of "$@" | while read -r name rest; do
    is_installed "$name" || echo "$name"
  done
}

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

apt_install() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "$@"
}

# install_packages KIND...: installs what is missing, in one go; where that fails, one by one, so that what can be had
# is had. Whoever needs a package looks at missing_packages afterwards.
install_packages() {
  if ! command -v dpkg-query apt-get >/dev/null; then
    echo "This is no Debian system: its packages are not looked at, what the build needs has to be there." >&2
    return 0
  fi
  local missing name
  mapfile -t missing < <(missing_packages "$@")
  [ "${#missing[@]}" -gt 0 ] || return 0
  echo "Installing: ${missing[*]}"
  as_root apt-get update -q || echo "The package lists could not be brought up to date." >&2
  apt_install "${missing[@]}" && return 0
  for name in "${missing[@]}"; do
    apt_install "$name" || echo "$name cannot be installed." >&2
  done
}

# require_packages KIND...: ends the script when one of them is still missing.
require_packages() {
  local missing
  mapfile -t missing < <(missing_packages "$@")
  [ "${#missing[@]}" = 0 ] && return 0
  echo "Missing packages, without which nothing can be done here: ${missing[*]}" >&2
  exit 1
}
