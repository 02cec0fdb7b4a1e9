# Sourced by the scripts that build libraries for another system: Debian's source packages, without a change to the
# machine's own list of them.

SOURCE_PACKAGES="dpkg-dev ca-certificates"

# fetch_source FOLDER PACKAGE...: unpacks the sources of each, as Debian patches them, into FOLDER/PACKAGE. What is
# there already stays.
fetch_source() (
  mkdir -p "$1"
  cd "$1"
  shift
  for package in "$@"; do
    [ ! -d "$package" ] || continue
    [ -d lists ] || update_source_lists
    rm -rf "$package.part"
    mkdir "$package.part"
    # A mirror may lack the newest ones.
    (cd "$package.part" && { apt_here -qq source "$package" || apt_here -qq source "$package/$(release_name)"; } >/dev/null)
    mv "$package.part"/*/ "$package"
    rm -r "$package.part"
  done
)

release_name() { (. /etc/os-release && echo "$VERSION_CODENAME"); }

# apt-get with lists of its own, in the folder it is called from or the one above.
apt_here() {
  folder=$PWD
  [ -d "$folder/lists" ] || folder=${folder%/*}
  apt-get -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$folder/sources.list.d" \
    -o Dir::State::Lists="$folder/lists" -o Dir::Cache::srcpkgcache= -o Dir::Cache::pkgcache= \
    -o APT::Sandbox::User= "$@"
}

# The places that packages come from are where their sources are.
update_source_lists() {
  mkdir -p lists sources.list.d
  for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    [ ! -f "$list" ] || sed -n 's/^deb /deb-src /p' "$list" >"sources.list.d/$(basename "$list" .list).list"
  done
  for list in /etc/apt/sources.list.d/*.sources; do
    [ ! -f "$list" ] || sed 's/^Types:.*/Types: deb-src/' "$list" >"sources.list.d/$(basename "$list")"
  done
  apt_here -qq update || { rm -r lists && return 1; }
}
