"""room.py RECORDING RESPONSE: the recording as it sounds in a room that makes the response of a single click."""
import signal_tzm as tz
from support import read, write

(x, rate), (response, _) = read(1), read(2)
y = tz.convolve(x, response)

write("sample", y)
