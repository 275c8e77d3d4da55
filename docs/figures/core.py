"""The use count over a sequence of calls, as libkett, which is up whenever liborva is, shows it."""
from figures import BLUE, axes, c_int32, function, save

initialize = function("ORVA_Initialize", None)
finalize = function("ORVA_Finalize", None)
use_foundation = function("KTCORE_Initialize", c_int32)
leave_foundation = function("KTCORE_Finalize", c_int32)


def is_up():
    uses = use_foundation() - 1     # one of liborva's while it is up
    leave_foundation()
    return uses > 0


calls = ["load", "Initialize", "Finalize", "Finalize", "Finalize", "Initialize", "Initialize", "Finalize", "unload"]
count, counts, up = 1, [1], [is_up()]
for call in calls[1:-1]:
    (initialize if call == "Initialize" else finalize)()
    count = max(count, 0) + 1 if call == "Initialize" else count - 1
    counts.append(count)
    up.append(is_up())
assert up == [count > 0 for count in counts]
counts.append(count - 1)

figure, plot = axes(height=3)
plot.step(range(len(counts)), counts, where="post", linewidth=2)
for place, shaded in enumerate(up):
    if shaded:
        plot.axvspan(place, place + 1, color=BLUE, alpha=0.1, linewidth=0)
plot.set(ylabel="Uses", xticks=range(len(calls)), xticklabels=calls, yticks=range(-1, 3), ylim=(-1.4, 2.4),
         xlim=(-0.3, len(calls) - 0.7))
plot.grid(axis="x", visible=False)
save(figure, "core")
