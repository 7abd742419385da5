#!/usr/bin/env bash
# Checks Valorimetrico as a user gets it, from outside the build: what `cmake --install` writes, or
# the Debian package that cpack makes. Run by CTest (packaging/CMakeLists.txt).
#
#   check-install.sh installazione BUILD_DIR [--con-guida]
#       installs into a temporary prefix and checks the tree and the installed programs;
#   check-install.sh deb BUILD_DIR [--con-guida]
#       makes the package, checks that it holds exactly the installed files, with the dependencies
#       and ownership dpkg wants, then unpacks it and checks the unpacked tree the same way; lintian,
#       when present, must find no error.
#   --con-guida: the online manual and valorimetrico_info.pdf are built, so they must be installed.
#
# Exits 77 (skipped) when a tool it needs is missing; scripts/install-deps installs them all.
set -euo pipefail

mode=${1:-}
build=${2:-}
guida=${3:-}
if [[ ! ( $mode == installazione || $mode == deb ) || ! -f $build/CMakeCache.txt ]]; then
  echo "Uso: $0 installazione|deb CARTELLA_DI_BUILD [--con-guida]" >&2
  exit 2
fi
build=$(cd "$build" && pwd)

need() {
  for tool; do
    if ! command -v "$tool" >/dev/null; then
      echo "Manca $tool (scripts/install-deps lo installa): verifica saltata."
      exit 77
    fi
  done
}
need cmake desktop-file-validate appstreamcli man od
[[ $mode == deb ]] && need cpack dpkg-deb dpkg dpkg-shlibdeps

export LC_ALL=C.UTF-8
app=it.valorimetrico.Valorimetrico
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
errors=0
fault() {
  echo "ERRORE: $*" >&2
  errors=$((errors + 1))
}

# Every file the installation holds, relative to the prefix.
expected_files() {
  printf '%s\n' bin/valorimetrico bin/valorimetrico-cli \
    "share/applications/$app.desktop" "share/metainfo/$app.metainfo.xml" \
    "share/icons/hicolor/scalable/apps/$app.svg" \
    share/man/man1/valorimetrico.1.gz share/man/man1/valorimetrico-cli.1.gz \
    lib/systemd/user/valorimetrico-registra.service lib/systemd/user/valorimetrico-registra.timer \
    share/doc/valorimetrico/copyright share/doc/valorimetrico/changelog.gz
  for size in 16 22 24 32 48 64 128 256; do
    echo "share/icons/hicolor/${size}x${size}/apps/$app.png"
  done
  if [[ $guida == --con-guida ]]; then
    printf '%s\n' share/valorimetrico/valorimetrico.qch share/valorimetrico/valorimetrico.qhc \
      share/valorimetrico/valorimetrico_info.pdf
  fi
}

# The value of KEY in a desktop entry or a systemd unit (first occurrence).
key() { sed -n "s/^$2=//p" "$1" | head -n 1; }

# Checks an installed tree: ROOT holds the files, which name themselves by PREFIX (the same
# folder after `cmake --install --prefix`, /usr for the unpacked package).
check_tree() {
  local root=$1 prefix=$2 file size width height
  while read -r file; do
    [[ -f $root/$file ]] || fault "manca $file"
  done < <(expected_files)
  [[ -x $root/bin/valorimetrico && -x $root/bin/valorimetrico-cli ]] || fault "programmi non eseguibili"

  # The PNGs really have the size their folder says (both dimensions, big-endian in the header).
  for size in 16 22 24 32 48 64 128 256; do
    file=$root/share/icons/hicolor/${size}x${size}/apps/$app.png
    [[ -f $file ]] || continue
    read -r width height < <(od -An -tu4 --endian=big -j16 -N8 "$file")
    [[ $width == "$size" && $height == "$size" ]] || fault "$file è ${width}x$height"
  done

  # Desktop entry and software-centre entry: valid, and joined to each other, to the icon and to
  # the program, which opens the user's data folder.
  local desktop=$root/share/applications/$app.desktop metainfo=$root/share/metainfo/$app.metainfo.xml
  desktop-file-validate "$desktop" || fault "desktop-file-validate: $desktop"
  appstreamcli validate --no-net "$metainfo" >"$tmp/appstream.log" 2>&1 ||
    { cat "$tmp/appstream.log" >&2; fault "appstreamcli validate: $metainfo"; }
  [[ $(key "$desktop" Icon) == "$app" ]] || fault "Icon= non è $app"
  [[ $(key "$desktop" Exec) == valorimetrico ]] || fault "Exec= non è valorimetrico"
  grep -q "<id>$app</id>" "$metainfo" || fault "id del metainfo diverso da $app"
  grep -q "<launchable type=\"desktop-id\">$app.desktop</launchable>" "$metainfo" ||
    fault "launchable del metainfo diverso da $app.desktop"

  # Manual pages: render without a warning, and document every command and option that the
  # installed tool's help prints.
  local page warnings cli=$root/bin/valorimetrico-cli command option
  for page in valorimetrico valorimetrico-cli; do
    file=$root/share/man/man1/$page.1.gz
    [[ -f $file ]] || continue
    warnings=$(MANWIDTH=80 MANROFFSEQ='' man --warnings -l "$file" 2>&1 >/dev/null) ||
      fault "man -l $page.1.gz non riesce"
    [[ -z $warnings ]] || fault "avvisi di man su $page.1.gz: $warnings"
    gzip -dc "$file" >"$tmp/$page.1"
  done
  "$cli" --help >"$tmp/help.txt" || fault "valorimetrico-cli --help esce con $?"
  "$root/bin/valorimetrico" --help >/dev/null || fault "valorimetrico --help esce con $?"
  grep -q '^  dossier ' "$tmp/help.txt" || fault "l'aiuto di valorimetrico-cli non elenca i comandi"
  # shellcheck disable=SC2013 # one word per line: the command names of the help
  for command in $(sed -n '/^Comandi:/,/^$/s/^  \([a-z-]*\) .*/\1/p' "$tmp/help.txt"); do
    grep -q "^\.SS \"${command}[ \"]" "$tmp/valorimetrico-cli.1" ||
      fault "il comando $command manca nella pagina di manuale"
    # The options are those of the usage line and of the lines that describe one.
    for option in $("$cli" "$command" --help | grep -E '^(Uso:|\s+--)' | grep -o -- '--[a-z][a-z-]*' | sort -u); do
      [[ $option == --help ]] && continue
      grep -q "^\.SS \"$command .*\\\\-\\\\-${option#--}" "$tmp/valorimetrico-cli.1" ||
        fault "l'opzione $option di $command manca nella pagina di manuale"
    done
  done
  local gui_option
  for gui_option in $("$root/bin/valorimetrico" --help | grep -o -- '--[a-z][a-z-]*' | sort -u); do
    grep -q "^\.BI \\\\-\\\\-${gui_option#--} " "$tmp/valorimetrico.1" ||
      fault "l'opzione $gui_option del programma manca nella pagina di manuale"
  done

  # The daily recording: the service runs the installed tool by its full path; the timer is
  # persistent and enables into timers.target.
  local unit=$root/lib/systemd/user/valorimetrico-registra
  local exec_start
  exec_start=$(key "$unit.service" ExecStart)
  [[ $exec_start == "$prefix/bin/valorimetrico-cli dossier --registra" ]] ||
    fault "ExecStart= inatteso: $exec_start"
  [[ $(key "$unit.timer" Persistent) == true && -n $(key "$unit.timer" OnCalendar) ]] ||
    fault "timer senza OnCalendar= o Persistent=true"
  [[ $(key "$unit.timer" WantedBy) == timers.target ]] || fault "timer senza WantedBy=timers.target"
  # systemd's own reading of the units, where it can find the service's program (not for the
  # unpacked package, whose units name /usr/bin); it only warns about an unknown key.
  if [[ $root == "$prefix" ]] && command -v systemd-analyze >/dev/null; then
    warnings=$(systemd-analyze verify --man=no "$unit.service" "$unit.timer" 2>&1) ||
      fault "systemd-analyze verify non riesce"
    [[ -z $warnings ]] || fault "systemd-analyze verify: $warnings"
  fi

  # The installed tool at work: a demo folder, valued; then the service's own command for a user
  # who never opened the program, which starts an empty database in the user's data folder.
  local demo=$tmp/demo-$RANDOM
  "$cli" demo "$demo" >/dev/null || fault "valorimetrico-cli demo esce con $?"
  "$cli" dossier --cartella "$demo" --csv >"$tmp/dossier.csv" || fault "valorimetrico-cli dossier esce con $?"
  grep -q ',trovato$' "$tmp/dossier.csv" || fault "la valutazione della cartella demo non trova titoli"
  local home=$tmp/home-$RANDOM
  mkdir "$home"
  # shellcheck disable=SC2086 # the command line, split into words as systemd does
  env -u XDG_DATA_HOME HOME="$home" $root${exec_start#"$prefix"} >"$tmp/servizio.log" 2>&1 ||
    { cat "$tmp/servizio.log" >&2; fault "il comando del servizio non riesce"; }
  [[ -f $home/.local/share/valorimetrico/valorimetrico.mdb ]] ||
    fault "il comando del servizio non crea il database nella cartella dei dati dell'utente"
}

# The installed files, relative to the prefix, sorted.
list_tree() { (cd "$1" && find . -type f -o -type l | sed 's|^\./||' | sort); }

installed=$tmp/installato
cmake --install "$build" --prefix "$installed" >"$tmp/install.log" 2>&1 ||
  { cat "$tmp/install.log" >&2; echo "ERRORE: cmake --install non riesce" >&2; exit 1; }

if [[ $mode == installazione ]]; then
  check_tree "$installed" "$installed"
else
  cpack --config "$build/CPackConfig.cmake" -G DEB -B "$tmp/cpack" >"$tmp/cpack.log" 2>&1 ||
    { cat "$tmp/cpack.log" >&2; echo "ERRORE: cpack non riesce" >&2; exit 1; }
  debs=("$tmp"/cpack/*.deb)
  [[ ${#debs[@]} == 1 && -f ${debs[0]} ]] || { echo "ERRORE: cpack non fa un solo .deb" >&2; exit 1; }
  deb=${debs[0]}

  [[ $(dpkg-deb -f "$deb" Package) == valorimetrico ]] || fault "il pacchetto non si chiama valorimetrico"
  depends=$(dpkg-deb -f "$deb" Depends)
  # libqt6core6 comes from dpkg-shlibdeps, the SQLite driver plugin from the list in CMake.
  [[ $depends == *libqt6core6* && $depends == *libqt6sql6-sqlite* ]] ||
    fault "dipendenze incomplete: $depends"

  # Exactly the installed files, under /usr, owned by root.
  dpkg-deb -c "$deb" >"$tmp/contenuto.txt"
  awk '$1 !~ /^d/ { print $6 }' "$tmp/contenuto.txt" | sed 's|^\./usr/||' | sort >"$tmp/nel-pacchetto.txt"
  list_tree "$installed" >"$tmp/installati.txt"
  diff -u "$tmp/installati.txt" "$tmp/nel-pacchetto.txt" >&2 ||
    fault "il pacchetto non contiene esattamente i file installati (- installati, + pacchetto)"
  awk '$2 != "root/root"' "$tmp/contenuto.txt" | grep . >&2 && fault "file non di root/root nel pacchetto"

  dpkg -x "$deb" "$tmp/estratto"
  check_tree "$tmp/estratto/usr" /usr

  if command -v lintian >/dev/null; then
    lintian --fail-on error "$deb" >"$tmp/lintian.log" 2>&1 ||
      { cat "$tmp/lintian.log" >&2; fault "lintian trova errori"; }
  fi
fi

if ((errors > 0)); then
  echo "$errors errori." >&2
  exit 1
fi
echo "Installazione ($mode) verificata."
