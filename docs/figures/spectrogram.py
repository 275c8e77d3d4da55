"""The spectrogram of the recorded voice, drawn by the program."""
import subprocess
import tempfile

from figures import BUILD, RECORDING, save_picture

with tempfile.NamedTemporaryFile(suffix=".png") as picture:
    subprocess.run([BUILD / "programs/orva", "spectrogram", RECORDING, picture.name, "--hop=128", "--range=80"],
                   check=True, stdout=subprocess.DEVNULL)
    save_picture(picture.name, "spectrogram")
