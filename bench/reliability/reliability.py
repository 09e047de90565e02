#!/usr/bin/env python3
"""Reliability figures, one name=value line each (make reliability).

    reliability.py BUILD_DIR [--only saves,crash,instance] [--trials-scale F]

saves     kill -9 at random moments while 1 KB to 8 MB documents are saved: torn files, stray
          temporary files right after the kill and after the next save
crash     kill -9 of the editor while five tabs are typed in, then a restart that restores:
          tabs restored, the oldest keystroke lost (seconds)
instance  the single-instance socket: its folder and mode, messages from another user,
          a burst of 1,000 connections, the next start after kill -9
compile   50 hostile file names through a custom template (and whether a shell ever starts,
          under strace when it is there), runaway compilers cancelled, a compiler printing
          1 GiB, compile/cancel cycles, compile temporary files (modes, symlinks planted in
          the temporary folder)
"""
import argparse
import os
import random
import shutil
import signal
import socket
import stat
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))


def figure(name, value):
    print(f"{name}={value}", flush=True)


def version_bytes(version, size):
    head = f"version {version} {size}\n".encode()
    fill = bytes([ord('a') + version % 26])
    return head + fill * max(0, size - len(head))


def is_whole_version(data, size):
    first = data.split(b"\n", 1)[0].split()
    if len(first) != 3 or first[0] != b"version" or not first[1].isdigit():
        return False
    return data == version_bytes(int(first[1]), size)


def strays(folder, name):
    return [f for f in os.listdir(folder) if f != name]


def saves(build, scale):
    host = os.path.join(build, "bench", "reliability_save_host")
    trials = max(1, int(1000 * scale))
    rng = random.Random(15)
    torn = stray_after_kill = stray_after_save = 0
    work = tempfile.mkdtemp(prefix="zam-saves-", dir=build)
    for trial in range(trials):
        folder = os.path.join(work, str(trial))
        os.mkdir(folder)
        path = os.path.join(folder, "doc.frag")
        size = int(1024 * 2 ** rng.uniform(0, 13))  # 1 KB .. 8 MB, as many small as large
        proc = subprocess.Popen([host, path, str(size)], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        proc.stdout.readline()  # one version is on disk
        time.sleep(rng.uniform(0, 0.03 + size / 50e6))
        proc.send_signal(signal.SIGKILL)
        proc.wait()
        proc.stdout.close()
        if not is_whole_version(open(path, "rb").read(), size):
            torn += 1
        stray_after_kill += len(strays(folder, "doc.frag"))
        subprocess.run([host, path, str(size), "--once"], stdout=subprocess.DEVNULL, check=True)
        stray_after_save += len(strays(folder, "doc.frag"))
        shutil.rmtree(folder)
    shutil.rmtree(work)
    figure("save_kill_trials", trials)
    figure("save_kill_torn_files", torn)
    figure("save_kill_stray_temporaries", stray_after_kill)
    figure("save_kill_stray_temporaries_after_next_save", stray_after_save)


def crash(build, scale):
    host = os.path.join(build, "bench", "reliability_editor_host")
    trials = max(1, int(100 * scale))
    rng = random.Random(16)
    tabs_expected = tabs_restored = 0
    worst_loss = 0.0
    for trial in range(trials):
        home = tempfile.mkdtemp(prefix="zam-crash-", dir=build)
        env = dict(os.environ, QT_QPA_PLATFORM=os.environ.get("QT_QPA_PLATFORM", "offscreen"),
                   XDG_STATE_HOME=os.path.join(home, "state"), XDG_CONFIG_HOME=os.path.join(home, "config"),
                   XDG_RUNTIME_DIR=home)
        proc = subprocess.Popen([host, "type", "5"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=env,
                                text=True)
        keys = {}  # tab -> list of (count, time ms)
        deadline = None
        for line in proc.stdout:
            parts = line.split()
            if len(parts) != 4 or parts[0] != "key":
                continue
            tab, count, at = int(parts[1]), int(parts[2]), int(parts[3])
            keys.setdefault(tab, []).append((count, at))
            if deadline is None:
                deadline = time.monotonic() + rng.uniform(1.5, 4.0)
            if time.monotonic() >= deadline:
                break
        killed_at = time.monotonic() * 1000
        proc.send_signal(signal.SIGKILL)
        proc.wait()
        restored = subprocess.run([host, "restore"], capture_output=True, text=True, env=env, timeout=60).stdout
        texts = [l.split("\t", 1)[1] for l in restored.splitlines() if l.startswith("tab ") and "\t" in l]
        tabs_expected += 5
        tabs_restored += len(texts)
        # Every tab's text is a prefix of what was typed into it; the first key missing from it
        # is the oldest keystroke lost.
        restored_lengths = sorted(len(t) for t in texts) + [0] * (5 - len(texts))
        typed = sorted(keys.values(), key=len)
        for done, history in zip(restored_lengths, typed):
            lost = [at for count, at in history if count > done]
            if lost:
                worst_loss = max(worst_loss, (killed_at - min(lost)) / 1000)
        shutil.rmtree(home)
    figure("crash_trials", trials)
    figure("crash_tabs_restored", f"{tabs_restored}/{tabs_expected}")
    figure("crash_largest_loss_seconds", f"{worst_loss:.2f}")


def instance_host(build, env, late=False):
    e = dict(env)
    if late:
        e["ZAM_INSTANCE_HOST_LATE"] = "1"
    return subprocess.Popen([os.path.join(build, "bin", "zam_instance_host")], stdin=subprocess.PIPE,
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=e, text=True)


def first_line(proc, timeout):
    import selectors
    sel = selectors.DefaultSelector()
    sel.register(proc.stdout, selectors.EVENT_READ)
    if sel.select(timeout):
        return proc.stdout.readline().strip()
    return ""


def send(path, message):
    s = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    s.connect(path)
    s.sendall(message)
    s.close()


def other_user():
    name = "zamreliability"
    if subprocess.run(["id", name], capture_output=True).returncode != 0:
        subprocess.run(["useradd", "--no-create-home", "--shell", "/usr/sbin/nologin", name], check=True)
    return name


def instance(build, scale):
    runtime = tempfile.mkdtemp(prefix="zam-runtime-", dir="/tmp")
    os.chmod(runtime, 0o700)
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen", XDG_RUNTIME_DIR=runtime)
    host = instance_host(build, env)
    first = first_line(host, 10)
    path = first.split(" ", 1)[1] if first.startswith("first ") else ""
    folder = os.path.dirname(path)
    figure("instance_socket_in_runtime_folder", int(path.startswith(runtime + "/")))
    figure("instance_socket_folder_mode", oct(stat.S_IMODE(os.stat(folder).st_mode)) if folder else "none")
    figure("instance_socket_mode", oct(stat.S_IMODE(os.lstat(path).st_mode)) if path else "none")

    # Another user: 100 messages, each naming a file; none may reach the instance.
    trials = max(1, int(100 * scale))
    if os.geteuid() == 0:
        user = other_user()
        os.chmod(runtime, 0o711)  # let the other user reach the socket's own folder at least
        client = ("import socket,sys\nok=0\nfor i in range(int(sys.argv[2])):\n"
                  " s=socket.socket(socket.AF_UNIX)\n try:\n  s.connect(sys.argv[1]); s.sendall(b'/tmp/from-other-user')"
                  "; ok+=1\n except OSError: pass\n s.close()\nprint(ok)")
        sent = subprocess.run(["runuser", "-u", user, "--", sys.executable, "-c", client, path, str(trials)],
                              capture_output=True, text=True).stdout.strip()
        os.chmod(runtime, 0o700)
        send(path, b"/tmp/marker-after-other-user")
        received = []
        while True:
            line = first_line(host, 5)
            if not line:
                break
            received.append(line)
            if "marker-after-other-user" in line:
                break
        leaked = sum("from-other-user" in l for l in received)
        figure("instance_other_user_messages", trials)
        figure("instance_other_user_refused", trials - leaked)
        figure("instance_other_user_connected", sent or 0)
    else:
        figure("instance_other_user_refused", "skipped (needs root for useradd and runuser)")

    # 1,000 connections at once, some silent, some sending garbage; then a real message.
    sockets = []
    for i in range(1000):
        s = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            s.connect(path)
            if i % 3 == 0:
                s.sendall(os.urandom(256))
            sockets.append(s)
        except OSError:
            s.close()
    started = time.monotonic()
    send(path, b"/tmp/marker-after-burst")
    seen = False
    while not seen:
        line = first_line(host, 30)
        if not line:
            break
        seen = "marker-after-burst" in line
    latency = (time.monotonic() - started) * 1000
    for s in sockets:
        s.close()
    figure("instance_burst_connections", len(sockets))
    figure("instance_burst_alive", int(host.poll() is None))
    figure("instance_burst_message_after_ms", f"{latency:.0f}" if seen else "never")
    host.send_signal(signal.SIGKILL)
    host.wait()

    # kill -9, then the next start must be the first instance within 2 s.
    within = 0
    worst = 0.0
    for _ in range(trials):
        victim = instance_host(build, env)
        first_line(victim, 10)
        victim.send_signal(signal.SIGKILL)
        victim.wait()
        started = time.monotonic()
        nxt = instance_host(build, env)
        line = first_line(nxt, 5)
        took = time.monotonic() - started
        if line.startswith("first ") and took <= 2:
            within += 1
        worst = max(worst, took)
        nxt.send_signal(signal.SIGKILL)
        nxt.wait()
    figure("instance_restart_first_within_2s", f"{within}/{trials}")
    figure("instance_restart_slowest_seconds", f"{worst:.2f}")
    shutil.rmtree(runtime, ignore_errors=True)


def compile_figures(build, scale):
    host = os.path.join(build, "bench", "reliability_compile_host")
    bindir = os.path.join(build, "bin")
    work = tempfile.mkdtemp(prefix="zam-template-", dir=build)
    command = [host, "template", bindir, work]
    trace = os.path.join(work, "exec.trace")
    if shutil.which("strace"):
        command = ["strace", "-f", "-qq", "-e", "trace=execve", "-o", trace] + command
    print(subprocess.run(command, capture_output=True, text=True).stdout, end="", flush=True)
    if os.path.exists(trace):
        execs = [l for l in open(trace, errors="replace") if "execve(" in l]
        shells = [l for l in execs if any(f'/{s}"' in l for s in ("sh", "bash", "dash", "zsh"))]
        figure("template_programs_started", len(execs) - 1)
        figure("template_shells_started", len(shells))
    shutil.rmtree(work)
    for args in (["runaway", bindir, str(max(2, int(200 * scale)))], ["flood", bindir],
                 ["cycles", bindir, str(max(1, int(1000 * scale)))]):
        print(subprocess.run([host] + args, capture_output=True, text=True, timeout=900).stdout, end="", flush=True)
    work = tempfile.mkdtemp(prefix="zam-tempfiles-", dir=build)
    print(subprocess.run([host, "tempfiles", bindir, work, str(max(2, int(100 * scale)))], capture_output=True,
                         text=True, timeout=900).stdout, end="", flush=True)
    shutil.rmtree(work)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--only", default="saves,crash,instance,compile")
    parser.add_argument("--trials-scale", type=float, default=1.0)
    args = parser.parse_args()
    build = os.path.abspath(args.build)
    for part in args.only.split(","):
        {"saves": saves, "crash": crash, "instance": instance, "compile": compile_figures}[part](build, args.trials_scale)


if __name__ == "__main__":
    main()
