#!/usr/bin/env bash
# Runs examples/scaling/slurm_array.sh on a Slurm of one node, this machine, and compares with one process.
#   tests/scaling/slurm_check.sh FOLDER
# FOLDER has chromosomes/*.tsv, and expected/*.tsv of one process each; the program is in PATH. The daemons are started
# here, by the user who runs this, with a key and a configuration of their own, and end with this script.
set -euo pipefail
PATH=$PATH:/usr/sbin
example=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../../examples/scaling/slurm_array.sh")
cd "$1"

# A socket's path has at most 107 bytes, which a build folder may exceed.
run=$(mktemp -d)
chmod 755 "$run"
started=()
clean_up() {
    ((${#started[@]} == 0)) || kill "${started[@]}" 2>/dev/null || true
    wait
    rm -rf "$run"
}
trap clean_up EXIT
trap 'exit 1' TERM INT

start() {
    "$@" >"$run/$1.log" 2>&1 &
    started+=($!)
}

# within SECONDS COMMAND...: waits until the command succeeds.
within() {
    local tries=$(($1 * 10))
    shift
    until "$@" >/dev/null 2>&1; do
        if ((tries-- == 0)); then
            echo "not in time: $*" >&2
            tail -n 30 "$run"/*.log >&2
            exit 1
        fi
        sleep 0.1
    done
}

(umask 077 && head -c 1024 /dev/urandom >"$run/munge.key")
start munged --foreground --force --key-file="$run/munge.key" --socket="$run/munge.socket" \
    --pid-file="$run/munged.pid" --log-file="$run/munge" --seed-file="$run/munged.seed"
within 5 test -S "$run/munge.socket"

read -r controller_port node_port < <(/usr/bin/python3 -c '
import socket
sockets = [socket.create_server(("127.0.0.1", 0)) for _ in range(2)]
print(*(each.getsockname()[1] for each in sockets))')
host=$(hostname -s)
mkdir "$run/state" "$run/spool"
export SLURM_CONF=$run/slurm.conf
cat >"$SLURM_CONF" <<CONFIGURATION
ClusterName=one
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=$controller_port
SlurmdPort=$node_port
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
AuthInfo=socket=$run/munge.socket
StateSaveLocation=$run/state
SlurmdSpoolDir=$run/spool
SlurmctldPidFile=$run/slurmctld.pid
SlurmdPidFile=$run/slurmd.pid
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
MpiDefault=none
SchedulerParameters=batch_sched_delay=0,sched_min_interval=0
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
NodeName=$host NodeAddr=127.0.0.1 CPUs=$(nproc) State=UNKNOWN
PartitionName=all Nodes=$host Default=YES State=UP
CONFIGURATION
start slurmctld -D -i
start slurmd -D -N "$host"

node_is_idle() { [[ $(sinfo --noheader --format=%T) == idle ]]; }
queue_is_empty() { [[ -z $(squeue --noheader) ]]; }
within 10 node_is_idle
mkdir -p pooled_by_slurm
rm -f pooled_by_slurm/*
sbatch --cpus-per-task=1 "$example"
within 60 queue_is_empty

for file in expected/*.tsv; do
    cmp "$file" "pooled_by_slurm/${file##*/}"
done
echo "$(find pooled_by_slurm -name '*.tsv' | wc -l) files are those of one process"
