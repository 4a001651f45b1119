# A private CUPS scheduler for bash scripts (debian/tests/command-job,
# docs/screenshot-levels.sh): the tree, the configuration written from
# cupsd.conf.in and cups-files.conf.in beside this file (the same that the
# C++ tests' PrivateCupsd fills in), a free loopback port, and the wait
# until it answers.  Sourced; it sets no shell options of its own, and its
# functions work under set -euo pipefail.
#
#   private_cupsd_start ROOT SERVER_BIN DATA_DIR  # then $private_cupsd_server
#   ...  lpadmin -h "$private_cupsd_server" ...
#   private_cupsd_stop

private_cupsd_here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
private_cupsd_pid=
private_cupsd_server=

# Makes the tree's folders under ROOT ($1), which must exist: the lp user
# must reach the spooled files and what the scheduler runs.
private_cupsd_tree() {
  chmod 0755 "$1" &&
    mkdir -p -m 0755 "$1/etc" "$1/etc/ppd" "$1/spool" "$1/tmp" "$1/cache" \
      "$1/state" "$1/log"
}

# Prints the template FILE ($1) with @ROOT@, @PORT@, @SERVER_BIN@ and
# @DATA_DIR@ replaced by $2, $3, $4 and $5; fails when it names another.
private_cupsd_fill() {
  local text unnamed name
  text=$(<"$1")
  unnamed=$text
  for name in @ROOT@ @PORT@ @SERVER_BIN@ @DATA_DIR@; do
    unnamed=${unnamed//"$name"/}
  done
  if [[ $unnamed == *@* ]]; then
    echo "$1 names a value that the scheduler was not given" >&2
    return 1
  fi
  text=${text//@ROOT@/"$2"}
  text=${text//@PORT@/"$3"}
  text=${text//@SERVER_BIN@/"$4"}
  text=${text//@DATA_DIR@/"$5"}
  printf '%s\n' "$text"
}

# Writes ROOT/etc/cupsd.conf and cups-files.conf for ROOT ($1), the port
# ($2), the server folder ($3) and the data folder ($4).
private_cupsd_config() {
  private_cupsd_fill "$private_cupsd_here/cupsd.conf.in" "$@" \
    >"$1/etc/cupsd.conf" &&
    private_cupsd_fill "$private_cupsd_here/cups-files.conf.in" "$@" \
      >"$1/etc/cups-files.conf"
}

# Prints a loopback port where nothing listens right now; fails when 100
# tries found none.
private_cupsd_free_port() {
  local port
  for _ in $(seq 100); do
    port=$((20000 + RANDOM % 40000))
    if ! (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
      echo "$port"
      return 0
    fi
  done
  return 1
}

# Waits until the scheduler on port $2 of ROOT ($1) answers: 15 s at most.
# Fails, with the reason on stderr, when it ends (a bad configuration),
# when it could not take the port (another program took it meanwhile; cupsd
# then runs on without listening, and an answer on the port would come
# from someone else), or when the time is up.
private_cupsd_wait() {
  local root=$1 port=$2
  for _ in $(seq 300); do
    if ! kill -0 "$private_cupsd_pid" 2>/dev/null; then
      echo "cupsd ended at start:" >&2
      cat "$root/log/cupsd.out" "$root/log/error_log" >&2 2>/dev/null || true
      private_cupsd_pid=
      return 1
    fi
    if grep -q 'Unable to open listen socket' "$root/log/error_log" 2>/dev/null; then
      echo "cupsd could not listen on 127.0.0.1:$port" >&2
      return 1
    fi
    if grep -qF "Listening to 127.0.0.1:$port on fd " "$root/log/error_log" 2>/dev/null &&
       [ "$(lpstat -h "127.0.0.1:$port" -r 2>/dev/null)" = "scheduler is running" ]; then
      return 0
    fi
    sleep 0.05
  done
  echo "cupsd did not answer on 127.0.0.1:$port within 15 s" >&2
  return 1
}

# Builds the tree under ROOT ($1), which must exist, for the server folder
# SERVER_BIN ($2) and the data folder DATA_DIR ($3), starts cupsd -f (in the
# background, with a clean environment) and waits until it answers; a port
# that another program took meanwhile costs one more try.  Sets
# $private_cupsd_pid and $private_cupsd_server ("127.0.0.1:PORT").  Fails
# with the reason on stderr.
private_cupsd_start() {
  local root=$1 server_bin=$2 data_dir=$3 port
  private_cupsd_tree "$root" || return 1
  for _ in 1 2 3; do
    port=$(private_cupsd_free_port) || { echo "no free loopback port" >&2; return 1; }
    private_cupsd_config "$root" "$port" "$server_bin" "$data_dir" || return 1
    rm -f "$root/log/error_log"
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C \
      "${CUPSD:-/usr/sbin/cupsd}" -f -c "$root/etc/cupsd.conf" \
      -s "$root/etc/cups-files.conf" </dev/null >>"$root/log/cupsd.out" 2>&1 &
    private_cupsd_pid=$!
    if private_cupsd_wait "$root" "$port"; then
      private_cupsd_server=127.0.0.1:$port
      return 0
    fi
    private_cupsd_stop
  done
  return 1
}

# Stops the scheduler, if one runs: SIGTERM, then SIGKILL after 5 s.
private_cupsd_stop() {
  [ -n "$private_cupsd_pid" ] || return 0
  kill "$private_cupsd_pid" 2>/dev/null || true
  for _ in $(seq 50); do
    kill -0 "$private_cupsd_pid" 2>/dev/null || break
    sleep 0.1
  done
  kill -KILL "$private_cupsd_pid" 2>/dev/null || true
  wait "$private_cupsd_pid" 2>/dev/null || true
  private_cupsd_pid=
  private_cupsd_server=
  return 0
}
