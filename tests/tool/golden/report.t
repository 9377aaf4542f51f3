# A page on a document; its time is left out here, and its style and script.
$ cat > page <<'END'
> qvejmap report "$@" -o - | sed -e 's/[0-9-]* [0-9:]* UTC/TIME/' -e '/^<style>/,/^<\/style>/d' -e '/^<script>/,/^<\/script>/d' -e '/^<svg/,/^<\/svg>/d'
> END
$ sh page orders.json
  <!DOCTYPE html>
  <html lang="en">
  <head>
  <meta charset="utf-8">
  <meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
  <meta name="viewport" content="width=device-width, initial-scale=1">
  <meta name="color-scheme" content="light dark">
  <title>orders.json</title>
  </head>
  <body>
  <header>
  <h1><bdi>orders.json</bdi></h1>
  <dl class="facts">
  <div><dt>Tables</dt><dd>4</dd></div>
  <div><dt>Columns</dt><dd>20</dd></div>
  <div><dt>Rows</dt><dd>9</dd></div>
  <div><dt>Values</dt><dd>20</dd></div>
  <div><dt>Size</dt><dd>517 bytes</dd></div>
  <div><dt>Made</dt><dd>TIME</dd></div>
  </dl>
  </header>
  <main>
  <section>
  <h2>Picture</h2>
  <p class="soft">An arrow leads from a table to those whose rows belong to its rows: a crow's foot to any number of them, a bar to at most one. A dashed arrow is no foreign key. The primary key is bold.</p>
  <div class="picture" tabindex="0" role="region" aria-label="Picture of the tables">
  </div>
  </section>
  <section>
  <h2>Tables</h2>
  <div class="wide" tabindex="0" role="region" aria-label="All tables, each below the one that its rows belong to"><table>
  <caption>All tables, each below the one that its rows belong to</caption>
  <thead><tr><th scope="col">Table</th><th scope="col" class="number">Rows</th><th scope="col" class="number">Columns</th><th scope="col">Path</th></tr></thead>
  <tbody>
  <tr><th scope="row" class="indented" style="--depth:0"><a href="#t0">orders</a></th><td class="number">2</td><td class="number">4</td><td><code>/root/orders</code></td></tr>
  <tr><th scope="row" class="indented" style="--depth:1"><a href="#t1">orders_customer</a></th><td class="number">2</td><td class="number">5</td><td><code>/root/orders/customer</code></td></tr>
  <tr><th scope="row" class="indented" style="--depth:1"><a href="#t2">orders_items</a></th><td class="number">3</td><td class="number">6</td><td><code>/root/orders/items</code></td></tr>
  <tr><th scope="row" class="indented" style="--depth:1"><a href="#t3">orders_tags</a></th><td class="number">2</td><td class="number">5</td><td><code>/root/orders/tags</code></td></tr>
  </tbody></table></div>
  </section>
  <section id="t0">
  <h2><bdi>orders</bdi></h2>
  <p>2 rows, path <code>/root/orders</code>, primary key <b>ordinal_orders</b>.</p>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of orders"><table>
  <caption>Columns of orders</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root">ordinal_root</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders"><b>ordinal_orders</b></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/id">id</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number">2</td><td class="number">4</td><td class="range"><span class="whole">1001</span> to <span class="whole">1002</span></td><td><ul class="examples"><li><bdi>1001</bdi> <span class="place" title="line and column">4:13</span></li></ul></td></tr>
  <tr><th scope="row" title="/root/orders/paid">paid</th><td class="type">BOOLEAN</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number">2</td><td class="number"></td><td class="range"></td><td><ul class="examples"><li><bdi>true</bdi> <span class="place" title="line and column">11:15</span></li><li><bdi>false</bdi> <span class="place" title="line and column">20:15</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of orders"><table>
  <caption>All rows of orders</caption>
  <thead><tr><th scope="col" class="number">ordinal_root</th><th scope="col" class="number">ordinal_orders</th><th scope="col" class="number">id</th><th scope="col">paid</th></tr></thead>
  <tbody>
  <tr><td class="number">1</td><td class="number">1</td><td class="number">1001</td><td><bdi>true</bdi></td></tr>
  <tr><td class="number">1</td><td class="number">2</td><td class="number">1002</td><td><bdi>false</bdi></td></tr>
  </tbody></table></div>
  </section>
  <section id="t1">
  <h2><bdi>orders_customer</bdi></h2>
  <p>2 rows, path <code>/root/orders/customer</code>, primary key <b>ordinal_customer</b>, foreign key <i>ordinal_orders</i> to <a href="#t0">orders</a> (one to one).</p>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of orders_customer"><table>
  <caption>Columns of orders_customer</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root">ordinal_root</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders"><i>ordinal_orders</i></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/customer"><b>ordinal_customer</b></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/customer/name">name</th><td class="type">TEXT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number">2</td><td class="number">8</td><td class="range"></td><td><ul class="examples"><li><bdi>Ada Berg</bdi> <span class="place" title="line and column">5:29</span></li></ul></td></tr>
  <tr><th scope="row" title="/root/orders/customer/city">city</th><td class="type">TEXT</td><td class="number filled" style="--share:50%" title="1 of 2 rows">50 %</td><td class="number">1</td><td class="number">4</td><td class="range"></td><td><ul class="examples"><li><bdi>Oslo</bdi> <span class="place" title="line and column">5:49</span></li><li><bdi>null</bdi> <span class="place" title="line and column">15:47</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of orders_customer"><table>
  <caption>All rows of orders_customer</caption>
  <thead><tr><th scope="col" class="number">ordinal_root</th><th scope="col" class="number">ordinal_orders</th><th scope="col" class="number">ordinal_customer</th><th scope="col">name</th><th scope="col">city</th></tr></thead>
  <tbody>
  <tr><td class="number">1</td><td class="number">1</td><td class="number">1</td><td><bdi>Ada Berg</bdi></td><td><bdi>Oslo</bdi></td></tr>
  <tr><td class="number">1</td><td class="number">2</td><td class="number">2</td><td><bdi>Li Wei</bdi></td><td class="soft">null</td></tr>
  </tbody></table></div>
  </section>
  <section id="t2">
  <h2><bdi>orders_items</bdi></h2>
  <p>3 rows, path <code>/root/orders/items</code>, primary key <b>ordinal_items</b>, foreign key <i>ordinal_orders</i> to <a href="#t0">orders</a>.</p>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of orders_items"><table>
  <caption>Columns of orders_items</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root">ordinal_root</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="3 of 3 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders"><i>ordinal_orders</i></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="3 of 3 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/items"><b>ordinal_items</b></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="3 of 3 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/items/sku">sku</th><td class="type">TEXT</td><td class="number filled" style="--share:100%" title="3 of 3 rows">100 %</td><td class="number">3</td><td class="number">5</td><td class="range"></td><td><ul class="examples"><li><bdi>lamp</bdi> <span class="place" title="line and column">7:18</span></li><li><bdi>chair</bdi> <span class="place" title="line and column">17:18</span></li></ul></td></tr>
  <tr><th scope="row" title="/root/orders/items/quantity">quantity</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="3 of 3 rows">100 %</td><td class="number">3</td><td class="number">1</td><td class="range"><span class="whole">1</span> to <span class="whole">4</span></td><td><ul class="examples"><li><bdi>2</bdi> <span class="place" title="line and column">7:38</span></li></ul></td></tr>
  <tr><th scope="row" title="/root/orders/items/price">price</th><td class="type">DOUBLE</td><td class="number filled" style="--share:100%" title="3 of 3 rows">100 %</td><td class="number">3</td><td class="number">5</td><td class="range"><span class="whole">19.5</span> to <span class="whole">240</span></td><td><ul class="examples"><li><bdi>19.5</bdi> <span class="place" title="line and column">7:50</span></li><li><bdi>85.25</bdi> <span class="place" title="line and column">17:51</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of orders_items"><table>
  <caption>All rows of orders_items</caption>
  <thead><tr><th scope="col" class="number">ordinal_root</th><th scope="col" class="number">ordinal_orders</th><th scope="col" class="number">ordinal_items</th><th scope="col">sku</th><th scope="col" class="number">quantity</th><th scope="col" class="number">price</th></tr></thead>
  <tbody>
  <tr><td class="number">1</td><td class="number">1</td><td class="number">1</td><td><bdi>lamp</bdi></td><td class="number">2</td><td class="number">19.5</td></tr>
  <tr><td class="number">1</td><td class="number">1</td><td class="number">2</td><td><bdi>desk</bdi></td><td class="number">1</td><td class="number">240</td></tr>
  <tr><td class="number">1</td><td class="number">2</td><td class="number">3</td><td><bdi>chair</bdi></td><td class="number">4</td><td class="number">85.25</td></tr>
  </tbody></table></div>
  </section>
  <section id="t3">
  <h2><bdi>orders_tags</bdi></h2>
  <p>2 rows, path <code>/root/orders/tags</code>, primary key <b>ordinal_tags</b>, foreign key <i>ordinal_orders</i> to <a href="#t0">orders</a> (one to one).</p>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of orders_tags"><table>
  <caption>Columns of orders_tags</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root">ordinal_root</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders"><i>ordinal_orders</i></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/tags"><b>ordinal_tags</b></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/tags/tags1">tags1</th><td class="type">TEXT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number">2</td><td class="number">6</td><td class="range"></td><td><ul class="examples"><li><bdi>gift</bdi> <span class="place" title="line and column">10:16</span></li><li><bdi>pickup</bdi> <span class="place" title="line and column">19:16</span></li></ul></td></tr>
  <tr><th scope="row" title="/root/orders/tags/tags2">tags2</th><td class="type">TEXT</td><td class="number filled" style="--share:50%" title="1 of 2 rows">50 %</td><td class="number">1</td><td class="number">7</td><td class="range"></td><td><ul class="examples"><li><bdi>fragile</bdi> <span class="place" title="line and column">10:24</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of orders_tags"><table>
  <caption>All rows of orders_tags</caption>
  <thead><tr><th scope="col" class="number">ordinal_root</th><th scope="col" class="number">ordinal_orders</th><th scope="col" class="number">ordinal_tags</th><th scope="col">tags1</th><th scope="col">tags2</th></tr></thead>
  <tbody>
  <tr><td class="number">1</td><td class="number">1</td><td class="number">1</td><td><bdi>gift</bdi></td><td><bdi>fragile</bdi></td></tr>
  <tr><td class="number">1</td><td class="number">2</td><td class="number">2</td><td><bdi>pickup</bdi></td><td></td></tr>
  </tbody></table></div>
  </section>
  <section>
  <h2>Account of all values</h2>
  <p>20 values = 20 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected</p>
  </section>
  </main>
  <footer>Made by qvejmap 1.0.0</footer>
  </body>
  </html>
# Examples: the first of each kind and the longest, with places.  What is worth knowing; the account.
$ cat > odd.json <<'END'
> {"orders":[{"id":1,"at":"2024-02-29T10:00:00Z","items":[{"n":1}]},{"items":[{"n":"two"},{"n":3}]},
>            {"id":-2.5,"at":"2024-02-29T10:00:00.5Z","items":[{"n":null},{"n":"the longest"}]}],
>  "x":[{"v":1,"v":2,"big":12345678901234567890}]}
> END
$ sh page odd.json | sed -n '/<section id="t0"/,/^<\/html/p'
  <section id="t0">
  <h2><bdi>orders</bdi></h2>
  <p>2 rows, path <code>/root/orders</code>, primary key <b>ordinal_orders</b>.</p>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of orders"><table>
  <caption>Columns of orders</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root">ordinal_root</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders"><b>ordinal_orders</b></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/id">id</th><td class="type">DOUBLE</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number">2</td><td class="number">4</td><td class="range"><span class="whole">-2.5</span> to <span class="whole">1</span></td><td><ul class="examples"><li><bdi>1</bdi> <span class="place" title="line and column">1:18</span></li><li><bdi>-2.5</bdi> <span class="place" title="line and column">2:18</span></li></ul></td></tr>
  <tr><th scope="row" title="/root/orders/at">at</th><td class="type">TIMESTAMP(1) UTC</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number">2</td><td class="number">22</td><td class="range"><span class="whole">2024-02-29T10:00:00Z</span> to <span class="whole">2024-02-29T10:00:00.5Z</span></td><td><ul class="examples"><li><bdi>2024-02-29T10:00:00Z</bdi> <span class="place" title="line and column">1:25</span></li><li><bdi>2024-02-29T10:00:00.5Z</bdi> <span class="place" title="line and column">2:28</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of orders"><table>
  <caption>All rows of orders</caption>
  <thead><tr><th scope="col" class="number">ordinal_root</th><th scope="col" class="number">ordinal_orders</th><th scope="col" class="number">id</th><th scope="col">at</th></tr></thead>
  <tbody>
  <tr><td class="number">1</td><td class="number">1</td><td class="number">1</td><td class="whole"><bdi>2024-02-29T10:00:00Z</bdi></td></tr>
  <tr><td class="number">1</td><td class="number">3</td><td class="number">-2.5</td><td class="whole"><bdi>2024-02-29T10:00:00.5Z</bdi></td></tr>
  </tbody></table></div>
  </section>
  <section id="t1">
  <h2><bdi>orders_items</bdi></h2>
  <p>5 rows, path <code>/root/orders/items</code>, primary key <b>ordinal_items</b>, belongs by <i>ordinal_orders</i> to <a href="#t0">orders</a>.</p>
  <ul class="marks"><li>2 rows have no row in orders</li><li>values of several kinds: n</li></ul>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of orders_items"><table>
  <caption>Columns of orders_items</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root">ordinal_root</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="5 of 5 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders"><i>ordinal_orders</i></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="5 of 5 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/items"><b>ordinal_items</b></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="5 of 5 rows">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/orders/items/n">n</th><td class="type">TEXT<br><small class="soft">several kinds</small></td><td class="number filled" style="--share:80%" title="4 of 5 rows">80 %</td><td class="number">4</td><td class="number">11</td><td class="range"></td><td><ul class="examples"><li><bdi>1</bdi> <span class="place" title="line and column">1:62</span></li><li><bdi>two</bdi> <span class="place" title="line and column">1:82</span></li><li><bdi>null</bdi> <span class="place" title="line and column">2:67</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of orders_items"><table>
  <caption>All rows of orders_items</caption>
  <thead><tr><th scope="col" class="number">ordinal_root</th><th scope="col" class="number">ordinal_orders</th><th scope="col" class="number">ordinal_items</th><th scope="col">n</th></tr></thead>
  <tbody>
  <tr><td class="number">1</td><td class="number">1</td><td class="number">1</td><td><bdi>1</bdi></td></tr>
  <tr><td class="number">1</td><td class="number">2</td><td class="number">2</td><td><bdi>two</bdi></td></tr>
  <tr><td class="number">1</td><td class="number">2</td><td class="number">3</td><td><bdi>3</bdi></td></tr>
  <tr><td class="number">1</td><td class="number">3</td><td class="number">4</td><td class="soft">null</td></tr>
  <tr><td class="number">1</td><td class="number">3</td><td class="number">5</td><td><bdi>the longest</bdi></td></tr>
  </tbody></table></div>
  </section>
  <section id="t2">
  <h2><bdi>x</bdi></h2>
  <p>1 row, path <code>/root/x</code>, primary key <b>ordinal_x</b>.</p>
  <ul class="marks"><li>1 value overwritten by a later one</li></ul>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of x"><table>
  <caption>Columns of x</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root">ordinal_root</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/x"><b>ordinal_x</b></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/x/v">v</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number">1</td><td class="number">1</td><td class="range"><span class="whole">2</span></td><td><ul class="examples"><li><bdi>1</bdi> <span class="place" title="line and column">3:12</span></li></ul></td></tr>
  <tr><th scope="row" title="/root/x/big">big</th><td class="type">DECIMAL(20,0)</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number">1</td><td class="number">20</td><td class="range"><span class="whole">12345678901234567890</span></td><td><ul class="examples"><li><bdi>12345678901234567890</bdi> <span class="place" title="line and column">3:26</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of x"><table>
  <caption>All rows of x</caption>
  <thead><tr><th scope="col" class="number">ordinal_root</th><th scope="col" class="number">ordinal_x</th><th scope="col" class="number">v</th><th scope="col" class="number">big</th></tr></thead>
  <tbody>
  <tr><td class="number">1</td><td class="number">1</td><td class="number">2</td><td class="number">12345678901234567890</td></tr>
  </tbody></table></div>
  </section>
  <section>
  <h2>Account of all values</h2>
  <p>12 values = 11 in cells + 1 overwritten + 0 no column + 0 no row + 0 rejected</p>
  <div class="wide" tabindex="0" role="region" aria-label="Values that no cell has, or another row"><table>
  <caption>Values that no cell has, or another row</caption>
  <thead><tr><th scope="col">Path</th><th scope="col" class="number">Values</th><th scope="col">How</th><th scope="col">First</th></tr></thead>
  <tbody>
  <tr><th scope="row"><code>/root/x/v</code></th><td class="number">1</td><td>overwritten</td><td>odd.json:3:12</td></tr>
  </tbody></table></div>
  </section>
  </main>
  <footer>Made by qvejmap 1.0.0</footer>
  </body>
  </html>
# Distinct values are counted up to 1000.
$ for n in 1000 1001; do
>     printf '[%s]' "$(seq -s, -f '{"a":%g}' $n)" | sh page - | sed -n 's/.*"\/root\/a".*100 %<\/td>\(<td[^<]*<\/td>\).*/\1/p'
> done
  <td class="number">1,000</td>
  <td class="number">&gt; 1,000</td>
# Names and values that look like markup are text.
$ cat > evil.json <<'END'
> {"</script><img src=x onerror=alert(1)>":[{"a\"'><b>&amp;":"</td><script>alert(2)</script>","\u001b\ufffe":""}],"long":{"t":"0123456789012345678901234567890123456789012345678901234567890123456789012345678901"}}
> END
$ sh page evil.json --naming original | sed -n '/<section id="t0"/,/^<\/main/p'
  <section id="t0">
  <h2><bdi>&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;</bdi></h2>
  <p>1 row, path <code>/root/&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;</code>, primary key <b>ordinal_&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;</b>.</p>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of &lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;"><table>
  <caption>Columns of &lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root">ordinal_root</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;"><b>ordinal_&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;</b></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;/a&quot;&#39;&gt;&lt;b&gt;&amp;amp;">a&quot;&#39;&gt;&lt;b&gt;&amp;amp;</th><td class="type">TEXT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number">1</td><td class="number">30</td><td class="range"></td><td><ul class="examples"><li><bdi>&lt;/td&gt;&lt;script&gt;alert(2)&lt;/script&gt;</bdi> <span class="place" title="line and column">1:60</span></li></ul></td></tr>
  <tr><th scope="row" title="/root/&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;/\\u001b�">\\u001b�</th><td class="type">TEXT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number">1</td><td class="number"></td><td class="range"></td><td><ul class="examples"><li><span class="soft">empty</span> <span class="place" title="line and column">1:108</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of &lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;"><table>
  <caption>All rows of &lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;</caption>
  <thead><tr><th scope="col" class="number">ordinal_root</th><th scope="col" class="number">ordinal_&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;</th><th scope="col">a&quot;&#39;&gt;&lt;b&gt;&amp;amp;</th><th scope="col">\\u001b�</th></tr></thead>
  <tbody>
  <tr><td class="number">1</td><td class="number">1</td><td><bdi>&lt;/td&gt;&lt;script&gt;alert(2)&lt;/script&gt;</bdi></td><td><span class="soft">empty</span></td></tr>
  </tbody></table></div>
  </section>
  <section id="t1">
  <h2><bdi>long</bdi></h2>
  <p>1 row, path <code>/root/long</code>, primary key <b>ordinal_long</b>.</p>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of long"><table>
  <caption>Columns of long</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root">ordinal_root</th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/long"><b>ordinal_long</b></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number"></td><td class="number"></td><td class="range"></td><td></td></tr>
  <tr><th scope="row" title="/root/long/t">t</th><td class="type">TEXT</td><td class="number filled" style="--share:100%" title="1 of 1 row">100 %</td><td class="number">1</td><td class="number">82</td><td class="range"></td><td><ul class="examples"><li><bdi>01234567890123456789012345678901234567890123456789012345678901234567890123456789…</bdi> <span class="place" title="line and column">1:125</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of long"><table>
  <caption>All rows of long</caption>
  <thead><tr><th scope="col" class="number">ordinal_root</th><th scope="col" class="number">ordinal_long</th><th scope="col">t</th></tr></thead>
  <tbody>
  <tr><td class="number">1</td><td class="number">1</td><td><bdi>01234567890123456789012345678901234567890123456789012345678901234567890123456789…</bdi></td></tr>
  </tbody></table></div>
  </section>
  <section>
  <h2>Account of all values</h2>
  <p>3 values = 3 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected</p>
  </section>
  </main>
$ qvejmap report evil.json -o - --naming original | grep -c -e '<img' -e '<b>&amp;' -e 'alert(2)</script>'
  0
? 1
# A shape, a map, a choice.
$ sh page orders.json --shape auto --table orders | grep -e 'Tables' -e rule -e '<h2'
  <div><dt>Tables</dt><dd>1</dd></div>
  <details><summary>Read with 2 rules of a shape</summary><ul><li><code>inline /root/orders/customer</code></li><li><code>rows /root/orders/tags</code></li></ul></details>
  <h2>Picture</h2>
  <h2>Tables</h2>
  <h2><bdi>orders</bdi></h2>
  <h2>Account of all values</h2>
$ printf '{"DATASETS":[{"DSNAME":"o","TABLEPATH":"/root/orders","VARIABLES":[{"NAME":"id","PATH":"/root/orders/id","TYPE":"NUMERIC","LABEL":"Number"}]}]}' > map.json
$ sh page orders.json --map map.json | sed -n '/<section id="t0"/,/^<\/html/p'
  <section id="t0">
  <h2><bdi>o</bdi></h2>
  <p>2 rows, path <code>/root/orders</code>.</p>
  <div class="wide" tabindex="0" role="region" aria-label="Columns of o"><table>
  <caption>Columns of o</caption>
  <thead><tr><th scope="col">Column</th><th scope="col">Type</th><th scope="col" class="number">Filled</th><th scope="col" class="number">Distinct</th><th scope="col" class="number">Longest</th><th scope="col">Range</th><th scope="col">Examples, with line:column</th></tr></thead>
  <tbody>
  <tr><th scope="row" title="/root/orders/id">id<br><small class="soft">Number</small></th><td class="type">BIGINT</td><td class="number filled" style="--share:100%" title="2 of 2 rows">100 %</td><td class="number">2</td><td class="number">4</td><td class="range"><span class="whole">1001</span> to <span class="whole">1002</span></td><td><ul class="examples"><li><bdi>1001</bdi> <span class="place" title="line and column">4:13</span></li></ul></td></tr>
  </tbody></table></div>
  <div class="wide" tabindex="0" role="region" aria-label="All rows of o"><table>
  <caption>All rows of o</caption>
  <thead><tr><th scope="col" class="number">id</th></tr></thead>
  <tbody>
  <tr><td class="number">1001</td></tr>
  <tr><td class="number">1002</td></tr>
  </tbody></table></div>
  </section>
  <section>
  <h2>Account of all values</h2>
  <p>20 values = 2 in cells + 0 overwritten + 18 no column + 0 no row + 0 rejected</p>
  <div class="wide" tabindex="0" role="region" aria-label="Values that no cell has, or another row"><table>
  <caption>Values that no cell has, or another row</caption>
  <thead><tr><th scope="col">Path</th><th scope="col" class="number">Values</th><th scope="col">How</th><th scope="col">First</th></tr></thead>
  <tbody>
  <tr><th scope="row"><code>/root/orders/paid</code></th><td class="number">2</td><td>no column</td><td>orders.json:11:15</td></tr>
  <tr><th scope="row"><code>/root/orders/customer/name</code></th><td class="number">2</td><td>no column</td><td>orders.json:5:29</td></tr>
  <tr><th scope="row"><code>/root/orders/customer/city</code></th><td class="number">2</td><td>no column</td><td>orders.json:5:49</td></tr>
  <tr><th scope="row"><code>/root/orders/items/sku</code></th><td class="number">3</td><td>no column</td><td>orders.json:7:18</td></tr>
  <tr><th scope="row"><code>/root/orders/items/quantity</code></th><td class="number">3</td><td>no column</td><td>orders.json:7:38</td></tr>
  <tr><th scope="row"><code>/root/orders/items/price</code></th><td class="number">3</td><td>no column</td><td>orders.json:7:50</td></tr>
  <tr><th scope="row"><code>/root/orders/tags/tags1</code></th><td class="number">2</td><td>no column</td><td>orders.json:10:16</td></tr>
  <tr><th scope="row"><code>/root/orders/tags/tags2</code></th><td class="number">1</td><td>no column</td><td>orders.json:10:24</td></tr>
  </tbody></table></div>
  </section>
  </main>
  <footer>Made by qvejmap 1.0.0</footer>
  </body>
  </html>
# Of many tables those with most rows are shown, the others listed.
$ { printf '{"a":1'; for i in $(seq 400); do printf ',"t%d":[{"a":1}' $i; [ $i -gt 200 ] && printf ',{"a":2}'; printf ']'; done; printf '}'; } > many.json
$ sh page many.json > many.html; grep -c '<section id' many.html; grep -o '<section id="t[0-9]*"' many.html | sed -n '1p;101p;102p;$p'; grep 'in detail' many.html
  300
  <section id="t0"
  <section id="t201"
  <section id="t202"
  <section id="t400"
  <p>Shown in detail are the 300 tables with most rows; --table and --path choose others.</p>
! qvejmap: 401 tables, most of them from names that are data, such as /root (400 names): try --shape auto
# The file.
$ qvejmap report orders.json
! qvejmap: report: -o OUT is missing (qvejmap --help tells more)
? 2
$ qvejmap report orders.json -o r.html; tail -1 r.html; qvejmap report orders.json -o r.html
  </html>
! qvejmap: r.html: the file exists (--force replaces it)
? 5
$ qvejmap report orders.json -o r.html --force; ls -A | grep -v json
  many.html
  page
  r.html
  tmp
$ printf '{"a":[1,}' > bad.json; qvejmap report bad.json -o bad.html; ls bad.html
! qvejmap: bad.json:1:9: a value was expected
!     {"a":[1,}
!             ^
! ls: cannot access 'bad.html': No such file or directory
? 2
