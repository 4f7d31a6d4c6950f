<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: GPL-3.0-or-later -->
<!--
  One album of the iTunes catalogue with its songs. It is loaded over the hit that it was asked for, whose small picture
  stays. The country is that of the shop that was asked and not of the release.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="xml" encoding="UTF-8"/>

  <xsl:variable name="results" select="/Data/results/*[starts-with(name(), 'Array')]"/>

  <xsl:template match="/">
    <SearchResults>
      <xsl:apply-templates select="$results[wrapperType = 'collection'][1]"/>
    </SearchResults>
  </xsl:template>

  <xsl:template match="*">
    <!-- Videos that come with an album are listed as well. -->
    <xsl:variable name="songs"
                  select="$results[wrapperType = 'track' and kind = 'song' and collectionId = current()/collectionId]"/>
    <Release>
      <xsl:call-template name="release-attributes"/>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'NUMBEROFDISCS'"/>
        <xsl:with-param name="value" select="$songs[1]/discCount"/>
      </xsl:call-template>
      <xsl:if test="primaryGenreName != '' and primaryGenreName != 'null'">
        <Genres>
          <Genre><xsl:value-of select="primaryGenreName"/></Genre>
        </Genres>
      </xsl:if>
      <ReleaseTypes>
        <ReleaseType>Digital</ReleaseType>
      </ReleaseTypes>
      <xsl:if test="$songs">
        <Tracks>
          <xsl:apply-templates select="$songs" mode="song">
            <xsl:sort select="discNumber" data-type="number"/>
            <xsl:sort select="trackNumber" data-type="number"/>
            <xsl:with-param name="releaseArtist" select="artistName"/>
          </xsl:apply-templates>
        </Tracks>
      </xsl:if>
      <xsl:call-template name="cover"/>
    </Release>
  </xsl:template>

  <xsl:template match="*" mode="song">
    <xsl:param name="releaseArtist"/>
    <Track>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'TRACK_ID'"/>
        <xsl:with-param name="value" select="trackId"/>
      </xsl:call-template>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'TRACK_NO'"/>
        <xsl:with-param name="value" select="trackNumber"/>
      </xsl:call-template>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'DISC_NO'"/>
        <xsl:with-param name="value" select="discNumber"/>
      </xsl:call-template>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'TRACK_TITLE'"/>
        <xsl:with-param name="value" select="trackName"/>
      </xsl:call-template>
      <xsl:if test="artistName != $releaseArtist">
        <xsl:call-template name="attribute">
          <xsl:with-param name="name" select="'TRACK_ARTIST'"/>
          <xsl:with-param name="value" select="artistName"/>
        </xsl:call-template>
      </xsl:if>
      <xsl:if test="trackTimeMillis &gt; 0">
        <xsl:attribute name="TRACK_DURATION_SEC">
          <xsl:value-of select="round(trackTimeMillis div 1000)"/>
        </xsl:attribute>
      </xsl:if>
    </Track>
  </xsl:template>

  <!-- The size of a picture is a part of its name, and any size can be asked for. -->
  <xsl:template name="cover">
    <xsl:variable name="small" select="'100x100bb'"/>
    <xsl:if test="artworkUrl100 != '' and artworkUrl100 != 'null'">
      <Images>
        <Image type="large">
          <xsl:choose>
            <xsl:when test="contains(artworkUrl100, $small)">
              <xsl:value-of select="concat(substring-before(artworkUrl100, $small), '600x600bb',
                                           substring-after(artworkUrl100, $small))"/>
            </xsl:when>
            <xsl:otherwise><xsl:value-of select="artworkUrl100"/></xsl:otherwise>
          </xsl:choose>
        </Image>
      </Images>
    </xsl:if>
  </xsl:template>

  <!-- An attribute, unless there is nothing to say: an empty one would empty the field. -->
  <xsl:template name="attribute">
    <xsl:param name="name"/>
    <xsl:param name="value"/>
    <xsl:if test="normalize-space($value) != '' and $value != 'null'">
      <xsl:attribute name="{$name}"><xsl:value-of select="normalize-space($value)"/></xsl:attribute>
    </xsl:if>
  </xsl:template>

  <xsl:template name="release-attributes">
    <xsl:attribute name="DATAPROVIDER">iTunes</xsl:attribute>
    <xsl:attribute name="RELEASE_TYPE">Digital</xsl:attribute>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_ID'"/>
      <xsl:with-param name="value" select="collectionId"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST_ID'"/>
      <xsl:with-param name="value" select="artistId"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'ARTIST'"/>
      <xsl:with-param name="value" select="artistName"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'RELEASE_TITLE'"/>
      <xsl:with-param name="value" select="collectionName"/>
    </xsl:call-template>
    <xsl:call-template name="attribute">
      <xsl:with-param name="name" select="'GENRE'"/>
      <xsl:with-param name="value" select="primaryGenreName"/>
    </xsl:call-template>
    <!-- A moment in UTC, which is midnight of that day on the American west coast. -->
    <xsl:if test="translate(substring(releaseDate, 1, 10), '123456789', '000000000') = '0000-00-00'">
      <xsl:attribute name="RELEASE_DATE"><xsl:value-of select="substring(releaseDate, 1, 10)"/></xsl:attribute>
      <xsl:attribute name="RELEASE_YEAR"><xsl:value-of select="substring(releaseDate, 1, 4)"/></xsl:attribute>
    </xsl:if>
    <!-- The price of an album that is not sold as a whole is -1. -->
    <xsl:if test="collectionPrice &gt;= 0">
      <xsl:attribute name="PRICE"><xsl:value-of select="collectionPrice"/></xsl:attribute>
      <xsl:call-template name="attribute">
        <xsl:with-param name="name" select="'CURRENCY'"/>
        <xsl:with-param name="value" select="currency"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>
</xsl:stylesheet>
