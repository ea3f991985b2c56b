#!/usr/bin/python3
"""Reads every block of the shipped symbol library with ezdxf, with its first six lines
replaced by the legend's BLOCK head as the DXF export does, and compares its geometry with the map glyph scripts of view/symbols.cpp,
read here from the source on their own so that a slip in the block writer shows.

usage: check_symbols.py SOURCE_DIR"""
import io
import os
import re
import sys

import ezdxf

K = 0.02          # block units per glyph pixel
TOL = 1e-9
SHARED = {833: 832, 834: 832, 835: 832, 838: 832}  # the bridges share one glyph

src = sys.argv[1]
scripts = {int(c): s for c, s in re.findall(r'\{(\d+), "([^"]*)"\}', open(os.path.join(src, 'view/symbols.cpp'), encoding='utf-8').read())}
symb = os.path.join(src, 'symb')
failures = []


def expected(script):
    """(lines, circles, arcs, texts) in block units, y upward."""
    lines, circles, arcs, texts = [], [], [], []
    for part in script.split(';'):
        f = part.split()
        op, v = f[0], f[1:]
        if op == 'T':
            dx, dy, size = map(float, v[:3])
            texts.append((dx * K, -(dy + size) * K, size * K, v[3]))
            continue
        v = [float(x) for x in v]
        P = lambda x, y: (x * K, -y * K)
        if op == 'L':
            lines.append((P(v[0], v[1]), P(v[2], v[3])))
        elif op == 'P':
            for i in range(2, len(v) - 1, 2):
                lines.append((P(v[i - 2], v[i - 1]), P(v[i], v[i + 1])))
        elif op == 'R':
            x1, y1, x2, y2 = v
            lines += [(P(x1, y1), P(x2, y1)), (P(x2, y1), P(x2, y2)), (P(x2, y2), P(x1, y2)), (P(x1, y2), P(x1, y1))]
        elif op in 'CD':
            c = (0, 0, v[0]) if len(v) == 1 else tuple(v)
            circles.append((c[0] * K, -c[1] * K, c[2] * K))
        elif op == 'A':
            arcs.append((v[0] * K, -v[1] * K, v[2] * K, v[3] % 360, v[4] % 360))
    return lines, circles, arcs, texts


def flat(t):
    return [x for v in t for x in (flat(v) if isinstance(v, tuple) else [v])]


def close(a, b):
    return all(abs(x - y) <= TOL for x, y in zip(flat(a), flat(b)))


def matched(want, got, what, code):
    left = list(got)
    for w in want:
        for i, g in enumerate(left):
            if close(w, g):
                del left[i]
                break
        else:
            failures.append(f'{code}: {what} {w} not in the block')
    if left:
        failures.append(f'{code}: {len(left)} {what}s more than the glyph has')


files = sorted(f for f in os.listdir(symb) if f.lower().endswith('.dxf'))
if '999.dxf' not in files:
    failures.append('999.dxf missing')
for name in files:
    code = int(name[:-4])
    raw = open(os.path.join(symb, name), 'rb').read()
    lines = raw.decode('cp950').split('\n')
    if lines[-1] == '':
        lines.pop()
    layer = f'L{code}'
    if code == 999:
        block = lines
        layer = '999'
    else:
        block = ['  0', 'BLOCK', '  8', layer, '  2', layer, ' 62', '7'] + lines[6:]
    text = '\n'.join(['  0', 'SECTION', '  2', 'BLOCKS'] + block + ['  0', 'ENDSEC', '  0', 'EOF']) + '\n'
    try:
        doc = ezdxf.read(io.StringIO(text))
    except Exception as e:  # noqa: BLE001 - any refusal of the reader is the finding
        failures.append(f'{name}: ezdxf refused it: {e}')
        continue
    blk = doc.blocks.get(layer)
    if blk is None:
        failures.append(f'{name}: no block {layer}')
        continue
    ents = list(blk)
    if any(e.dxf.layer != '0' for e in ents):
        failures.append(f'{name}: an entity off layer 0')
    got_lines = [((e.dxf.start.x, e.dxf.start.y), (e.dxf.end.x, e.dxf.end.y)) for e in ents if e.dxftype() == 'LINE']
    got_circles = [(e.dxf.center.x, e.dxf.center.y, e.dxf.radius) for e in ents if e.dxftype() == 'CIRCLE']
    got_arcs = [(e.dxf.center.x, e.dxf.center.y, e.dxf.radius, e.dxf.start_angle, e.dxf.end_angle)
                for e in ents if e.dxftype() == 'ARC']
    got_texts = [(e.dxf.insert.x, e.dxf.insert.y, e.dxf.height, e.dxf.text) for e in ents if e.dxftype() == 'TEXT']
    # A filled dot: a closed width polyline of two half-circle bulges inside its outline.
    for e in ents:
        if e.dxftype() == 'POLYLINE':
            pts = [v.dxf.location for v in e.vertices]
            r = e.dxf.default_start_width
            cx, cy = (pts[0].x + pts[1].x) / 2, (pts[0].y + pts[1].y) / 2
            if not (e.is_closed and len(pts) == 2 and all(v.dxf.bulge == 1 for v in e.vertices)
                    and any(close((cx, cy, r), c) for c in got_circles)):
                failures.append(f'{name}: a dot that does not fill its outline')
    glyph = scripts.get(SHARED.get(code, code))
    if glyph is not None:
        want = expected(glyph)
        matched(want[0], got_lines, 'line', code)
        matched(want[1], got_circles, 'circle', code)
        matched(want[2], got_arcs, 'arc', code)
        matched([w[:3] for w in want[3]], [g[:3] for g in got_texts], 'text', code)
        if sorted(w[3] for w in want[3]) != sorted(g[3] for g in got_texts):
            failures.append(f'{code}: texts {[g[3] for g in got_texts]}')

missing = [c for c in scripts if f'{c}.dxf' not in files]
if missing:
    failures.append(f'glyph codes with no block: {missing}')
print(f'{len(files)} blocks read, {len(scripts)} glyphs compared')
for f in failures:
    print(f)
sys.exit(1 if failures else 0)
