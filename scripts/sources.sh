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
    (cd "$package.part" && { apt_here -qq source "$package" 2>/dev/null || apt_here -qq source "$package/$(release_name)"; } >/dev/null)
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

# What follows builds libraries into $libraries, from sources in $sources. The script that calls it also sets $toolchain,
# CMake's file, $build_type, and, for build_plainly, $compile and $archive, commands with their options.

# is_built NAME and mark_built NAME: what was finished isn't built again.
is_built() { [ -f "$libraries/.$1" ]; }
mark_built() { touch "$libraries/.$1"; }

# build_with_cmake NAME SOURCE [OPTION...]. No path of this machine gets into the library.
build_with_cmake() (
  name=$1
  source=$2
  shift 2
  is_built "$name" && return
  folder=$(dirname "$libraries")/$name
  # Beside the options of the toolchain, which CMAKE_C_FLAGS would replace.
  export CFLAGS="-ffile-prefix-map=$source=$name" CXXFLAGS="-ffile-prefix-map=$source=$name"
  cmake -S "$source" -B "$folder" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_BUILD_TYPE="$build_type" \
    -DCMAKE_INSTALL_PREFIX="$libraries" -DBUILD_SHARED_LIBS=OFF -DCMAKE_POLICY_DEFAULT_CMP0074=NEW -Wno-dev \
    "$@" >/dev/null
  cmake --build "$folder" --target install >/dev/null
  mark_built "$name"
)

# build_plainly NAME SOURCE HEADER... -- FILE...: the files of the library alone, where makefiles make programs as well.
build_plainly() (
  name=$1
  source=$2
  shift 2
  is_built "$name" && return
  while [ "$1" != -- ]; do
    cp "$source/$1" "$libraries/include"
    shift
  done
  shift
  folder=$(dirname "$libraries")/$name
  mkdir -p "$folder"
  cd "$folder"
  for file in "$@"; do $compile "-ffile-prefix-map=$source=$name" -c "$source/$file"; done
  rm -f "$libraries/lib/$name.a"
  $archive "$libraries/lib/$name.a" ./*.o
  mark_built "$name"
)

# What the kit stands on.
build_kit_libraries() {
  fetch_source "$sources" zlib libpng1.6 giflib yaml-cpp
  mkdir -p "$libraries/include" "$libraries/lib" "$libraries/share/cmake"
  cp -r /usr/include/nlohmann "$libraries/include"
  cp -r /usr/share/cmake/nlohmann_json "$libraries/share/cmake"
  build_plainly libz "$sources/zlib" zlib.h zconf.h -- adler32.c compress.c crc32.c deflate.c infback.c inffast.c \
    inflate.c inftrees.c trees.c uncompr.c zutil.c gzclose.c gzlib.c gzread.c gzwrite.c
  build_plainly libgif "$sources/giflib" gif_lib.h -- dgif_lib.c egif_lib.c gifalloc.c gif_err.c gif_font.c gif_hash.c \
    openbsd-reallocarray.c
  build_with_cmake libpng "$sources/libpng1.6" -DPNG_SHARED=OFF -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF
  build_yaml
}

build_yaml() {
  build_with_cmake yaml-cpp "$sources/yaml-cpp" -DYAML_CPP_BUILD_TESTS=OFF -DYAML_CPP_BUILD_TOOLS=OFF \
    -DYAML_CPP_BUILD_CONTRIB=OFF
}

build_googletest() { build_with_cmake googletest /usr/src/googletest -DINSTALL_GTEST=ON -DBUILD_GMOCK=OFF; }
