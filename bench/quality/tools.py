"""Runs other programs."""
import subprocess


def run(*command, sound=None):
    """Runs a program with the bytes of a sound as standard input, and returns its messages on standard error. Raises
    an error with the last of them if the program fails."""
    done = subprocess.run(command, input=sound, capture_output=True, check=False)
    messages = done.stderr.decode(errors="replace")
    if done.returncode != 0:
        last = messages.strip().split("\n")[-1]
        raise RuntimeError(f"{command[0]} failed: {last}")
    return messages
