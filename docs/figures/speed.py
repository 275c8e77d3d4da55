"""How many times as long others take, from the table of docs/speed.md, which `script/bench page` measures."""
import re

from figures import BLUE, GREY, ORANGE, ROOT, axes, numpy, save

page = (ROOT / "docs/speed.md").read_text()
table = re.search(r"<!-- targets -->\n(.*?)<!-- end -->", page, re.S)[1].strip().splitlines()
heads, _, *lines = ([cell.strip() for cell in line.strip("|").split("|")] for line in table)
rows = [dict(zip(heads, line)) for line in lines]
aim = "Aim, AVX-512" if "Best level: avx512" in page else "Aim, AVX2"

figure, plot = axes(height=0.17 * len(rows) + 0.9)
places = numpy.arange(len(rows))
ratios = [float(row["Ratio"]) for row in rows]
plot.barh(places, ratios, color=[BLUE if ratio >= 1 else GREY for ratio in ratios], height=0.7)
aims = [(place, float(row[aim])) for place, row in zip(places, rows) if row[aim]]
plot.plot([value for _, value in aims], [place for place, _ in aims], "|", color=ORANGE, markersize=8, markeredgewidth=2,
          label="aim")
for place, ratio in zip(places, ratios):
    beyond = max(ratio, dict(aims).get(place, 0))
    plot.annotate(f"{ratio:.3g}", (beyond, place), xytext=(4, 0), textcoords="offset points", va="center", fontsize=7)
plot.axvline(1, color="#303030", linewidth=1)
plot.set(xscale="log", ylim=(len(rows) - 0.4, -0.6), xlim=(0.2, max(ratios) * 2), title="Their time by ours",
         xlabel="Above 1, ours is faster")
plot.set_xticks((0.5, 1, 2, 5, 10, 20, 50, 100, 200), (0.5, 1, 2, 5, 10, 20, 50, 100, 200))
plot.set_xticks((), minor=True)
plot.set_yticks(places, [f"{row['Path']}: {row['Beside']}" for row in rows], fontsize=7)
plot.grid(axis="y", visible=False)
plot.legend(loc="lower right")
save(figure, "speed")
